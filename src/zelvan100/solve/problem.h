#pragma once
// A model in the terms of HiGHS: minimize or maximize a linear function over rows with two sides, some
// columns integer. Its first columns and rows are those of the model; bridges append theirs, so a
// solution is mapped back by cutting it off behind the model's own.

#include <cstdint>
#include <utility>
#include <vector>

#include "core/changes.h"
#include "core/model_data.h"

namespace zelvan {

// Column `col` is 0 or within [lower, upper], which doesn't hold 0.
struct Gap {
    int col;
    double lower, upper;
};

// At most `type` of the columns are other than 0, and those are neighbours.
struct OrderedSet {
    int type;  // 1 or 2
    std::vector<int> cols;
};

struct Disjunctions {
    std::vector<Gap> gaps;
    std::vector<OrderedSet> sets;

    bool empty() const { return gaps.empty() && sets.empty(); }
};

class Problem {
public:
    // Takes over bounds, rows, types and the main objective, with its weight where there are several. What else there
    // is of a model is left to the bridges. The matrix stays in `data` until a bridge adds to it.
    // A row with entries that HiGHS would drop is multiplied by a power of two. Throws Error when a coefficient is
    // beyond what HiGHS computes with.
    explicit Problem(const ModelData& data);

    int sense = 1;
    double offset = 0.0;
    std::vector<double> cost, lb, ub;
    std::vector<char> integer;  // 1 or 0
    std::vector<double> row_lower, row_upper;
    std::vector<int> start;     // of the rows, one more than there are rows
    Disjunctions disjunctions;  // what a point has to hold besides

    int num_cols() const { return static_cast<int>(cost.size()); }
    int num_rows() const { return static_cast<int>(row_lower.size()); }
    int num_entries() const { return start.back(); }
    const int* col() const { return own_matrix_ ? col_.data() : model_col_; }
    const double* val() const { return own_matrix_ ? val_.data() : model_val_; }
    // Whether there are entries that HiGHS drops unless it is told not to.
    bool has_small_entries() const { return has_small_entries_; }
    // Turns multipliers of rows, such as dual values, into those of the rows as the model has them.
    void unscale(std::vector<double>& multipliers) const;
    bool is_mip() const;  // there are integer columns or disjunctions
    // Whether some column or row has no value at all that it may take, such as a lower bound of infinity.
    bool has_empty_range() const;
    bool is_feasible(const std::vector<double>& x, double tolerance) const;

    using Terms = std::vector<std::pair<int, double>>;  // column, coefficient
    // Both return the index of what was added. A row may be multiplied by a power of two, as those of the model.
    int add_col(double lower, double upper, double objective, bool is_integer);
    int add_row(const Terms& terms, double lower, double upper);
    // One more row: the objective without its offset is to be no worse than the value.
    void limit_objective(double value);

    // For a session that holds an earlier problem, to take only what differs. Equal stamps mean the same columns,
    // rows and coefficients of the model, 0 is unlike any; changes tell what became of those of stamp changes()->since
    // and must outlive this.
    void follow(std::uint64_t stamp, const Changes& changes);
    std::uint64_t stamp() const { return stamp_; }
    const Changes* changes() const { return changes_; }
    int model_cols() const { return model_cols_; }
    int model_rows() const { return model_rows_; }
    // Of problems with equal stamps and versions the matrices are equal; 0 without additions.
    std::uint64_t version() const { return version_; }
    // What is added from now on lies behind that version.
    void begin_additions() { base_ = version_; }
    std::uint64_t base_version() const { return base_; }

private:
    void take_matrix(const ModelData& data);
    void own_matrix();

    int model_cols_, model_rows_;
    std::uint64_t stamp_ = 0, version_ = 0, base_ = 0;
    const Changes* changes_ = nullptr;
    const int* model_col_;
    const double* model_val_;
    bool own_matrix_ = false;
    std::vector<int> col_;
    std::vector<double> val_;
    bool has_small_entries_ = false;
    std::vector<std::pair<int, double>> factors_;  // of the rows that were multiplied
};

// What the main objective is multiplied by.
double main_weight(const ModelData& data);

}  // namespace zelvan
