#pragma once
// A model in the terms of HiGHS: minimize or maximize a linear or quadratic function over rows with two sides, some
// columns integer. Its first columns and rows are those of the model; bridges append theirs, so a
// solution is mapped back by cutting it off behind the model's own.

#include <cstdint>
#include <memory>
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

struct SumOfSquares;
// x[w] = x[x] * x[y], where x[x] and x[y] have finite bounds. Where x is y, a cone holds x[w] from below.
struct Product {
    int w, x, y;
};

// The row that stands for a quadratic constraint: that times `sign`, divided by a column, or by none where that is -1.
struct LiftedRow {
    int row;
    double sign;
    int divisor;
};

struct Disjunctions {
    std::vector<Gap> gaps;
    std::vector<OrderedSet> sets;
    std::vector<Product> products;

    bool empty() const { return gaps.empty() && sets.empty() && products.empty(); }
};

// x[t] * x[z] >= x[y]^2, where x[t] and x[z] are at least 0; z is -1 where 1 stands for x[z].
struct Cone {
    int t, y, z;
};

// Powers of two by which rows are multiplied: row, factor, by rising row.
using RowFactors = std::vector<std::pair<int, double>>;

// What a session keeps in mind of the model whose problem it holds.
struct Ancestor {
    std::uint64_t stamp = 0;  // of the model, unlike any other; 0 without a problem that could be followed
    RowFactors factors;       // of its rows
    bool has_small_entries = false;
};

class Problem {
public:
    // Takes over bounds, rows, types and the main objective, with its weight where there are several. What else there
    // is of a model is left to the bridges. The matrix stays in `data` until a bridge adds to it.
    // A row with entries that HiGHS would drop is multiplied by a power of two. Throws Error when a coefficient is
    // beyond what HiGHS computes with.
    explicit Problem(const ModelData& data) : Problem(data, 0, {}, {}) {}
    // The same for a session that holds `held`, to take only what differs. Changes tell what became of the columns and
    // rows of the model of stamp changes.since, until the one of `stamp`, and must outlive this.
    Problem(const ModelData& data, std::uint64_t stamp, const Changes& changes, const Ancestor& held);

    int sense = 1;
    double offset = 0.0;
    QuadTerms quad;                               // of the objective
    std::shared_ptr<const SumOfSquares> squares;  // that they are, for 1 as sense, once that is known
    std::vector<double> cost, lb, ub;
    std::vector<char> integer;  // 1 or 0
    std::vector<double> row_lower, row_upper;
    std::vector<int> start;              // of the rows, one more than there are rows
    Disjunctions disjunctions;           // what a point has to hold besides
    std::vector<Cone> cones;             // and this
    std::vector<LiftedRow> lifted_rows;  // of the quadratic constraints, one for each

    int num_cols() const { return static_cast<int>(cost.size()); }
    int num_rows() const { return static_cast<int>(row_lower.size()); }
    int num_entries() const { return start.back(); }
    const int* col() const { return own_matrix_ ? col_.data() : model_col_; }
    const double* val() const { return own_matrix_ ? val_.data() : model_val_; }
    // Whether there are entries that HiGHS drops unless it is told not to.
    bool has_small_entries() const { return has_small_entries_; }
    // Turns multipliers of rows, such as dual values, into those of the rows as the model has them.
    void unscale(std::vector<double>& multipliers) const;
    // Whether a row of the model has other coefficients here.
    bool has_multiplied_rows() const { return !ancestor_.factors.empty(); }
    bool is_mip() const;  // there are integer columns or disjunctions
    // Whether some column or row has no value at all that it may take, such as a lower bound of infinity.
    bool has_empty_range() const;
    bool is_feasible(const std::vector<double>& x, double tolerance) const;
    // Every point is as good as any other.
    void clear_objective();

    using Terms = std::vector<std::pair<int, double>>;  // column, coefficient
    // Both return the index of what was added. A row may be multiplied by a power of two, as those of the model.
    int add_col(double lower, double upper, double objective, bool is_integer);
    int add_row(const Terms& terms, double lower, double upper);
    // Rows whose coefficients and sides may change while the version stays: all that are added from the first call on,
    // until the second one.
    void begin_variable_rows() { variable_rows_ = {num_rows(), num_rows()}; }
    void end_variable_rows() { variable_rows_.second = num_rows(); }
    std::pair<int, int> variable_rows() const { return variable_rows_; }
    // The terms have the columns of the row, in their order.
    void change_row(int i, const Terms& terms, double lower, double upper);
    // Takes bounds, costs, sides and changing coefficients over from a problem whose columns and rows are the first
    // ones here.
    void take_values(const Problem& other);
    // One more row: the objective without its offset is to be no worse than the value.
    void limit_objective(double value);

    // Equal stamps mean the same columns, rows and coefficients of the model, 0 is unlike any.
    std::uint64_t stamp() const { return ancestor_.stamp; }
    // For sessions that hold the model of stamp changes()->since; nullptr when there is nothing to follow.
    const Changes* changes() const { return changes_; }
    // For the problem that follows this one.
    const Ancestor& as_ancestor() const { return ancestor_; }
    int model_cols() const { return model_cols_; }
    int model_rows() const { return model_rows_; }
    // Of problems with equal stamps and versions the matrices are equal; 0 without additions.
    std::uint64_t version() const { return version_; }
    // What is added from now on lies behind that version.
    void begin_additions() { base_ = version_; }
    std::uint64_t base_version() const { return base_; }

private:
    void take_columns(const ModelData& data);
    void choose_factors(const ModelData& data, const RowFactors& earlier);
    void multiply_rows();
    void own_matrix();

    int model_cols_, model_rows_;
    std::uint64_t version_ = 0, base_ = 0;
    std::pair<int, int> variable_rows_{0, 0};
    Ancestor ancestor_;  // what the model's part of this is to the next one
    const Changes* changes_ = nullptr;
    const int* model_col_;
    const double* model_val_;
    bool own_matrix_ = false;
    std::vector<int> col_;
    std::vector<double> val_;
    bool has_small_entries_ = false;
};

// What the main objective is multiplied by.
double main_weight(const ModelData& data);

}  // namespace zelvan
