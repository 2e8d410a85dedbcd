#pragma once
// A model: its data as of the last update, the queue of changes since then, its own environment and
// the solution of the latest solve.

#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "core/changes.h"
#include "core/env.h"
#include "core/error.h"
#include "core/model_data.h"
#include "core/name_finder.h"
#include "core/solution.h"
#include "core/writes.h"

namespace zelvan {

class HighsSession;  // the kept HiGHS instance, solve/highs.h

// A whole objective: all coefficients 0, then these terms added. Number 0 is the main objective, number -1
// the main objective without the fields that only several objectives have.
struct ObjectiveWrite {
    int sense;  // 0 leaves the sense
    int number;
    int num_cols;          // columns known when it was queued; later ones keep their own coefficient
    Objective fields;      // constant, and for number >= 0 the other fields; for number > 0 the coefficients too
    std::vector<int> col;  // the terms of the main objective
    std::vector<double> val;
    QuadTerms quad;
};
struct PwlWrite {
    int col;
    std::map<int, PwlPoints>::node_type term;  // empty removes the term
};

// What waits for the update. It first appends the additions, then applies the writes in their order, then deletes; so a
// write may name a queued object. Additions are numbered behind the objects of the model.
struct Queue : Families {
    struct Entry {
        int row, col;
        double val;
    };
    std::vector<Entry> entries;  // of new columns, in rows old or queued
    struct Helper {
        int row;  // numbered as the queued rows are
        double lb, ub;
    };
    std::vector<Helper> helpers;  // rows that get a helper column, behind all other new columns
    std::vector<Write> writes;
    std::vector<TextWrite> texts;
    std::vector<ObjectiveWrite> objectives;
    std::vector<PwlWrite> pwl;
    std::array<std::vector<int>, kNumKinds> deleted;
    int num_objectives = -1;                     // after the writes so far; -1 where they leave the number
    std::size_t text_bytes = 0, text_limit = 0;  // of texts; the limit at which replaced ones are dropped

    bool empty() const;
};

class Model {
public:
    explicit Model(const Env& parent);
    ~Model();

    ModelData data;
    Queue queue;
    Env env;
    Solution solution;
    mutable std::mutex state_mutex;  // held to read data and solution, and where a solve changes them
    std::atomic<bool> solving{false};
    std::atomic<bool> stop{false};          // set by ZVNterminate and SIGINT
    std::vector<char> handed_out;           // default names that were handed out as C strings, until the next call
    bool watch_signal = false;              // ZVNsetsignal was called for the next solve
    std::shared_ptr<HighsSession> session;  // made by the first solve

    int num_cols() const { return data.cols.size(); }
    int num_rows() const { return data.rows.size(); }
    // Objectives that a change may name: with the queued ones, 0 while there is only the main one.
    int objective_limit() const;
    // One past the last index that a change may name: queued objects count.
    int limit(Kind kind) const { return data.size(kind) + queue.size(kind); }
    int col_limit() const { return limit(Kind::kColumn); }
    int row_limit() const { return limit(Kind::kRow); }

    // Changes are queued. Each of these throws Error, with nothing queued, when an argument is refused.
    // Arrays as in zelvan100.h.
    void add_cols(int num, const double* obj, const double* lb, const double* ub, const char* vtype,
                  const char* const* names);
    // One column with entries in rows.
    void add_col(int num, const int* row, const double* val, double obj, double lb, double ub, char vtype,
                 const char* name);
    void add_cols_with_entries(int num, int num_entries, const int* beg, const int* row, const double* val,
                               const double* obj, const double* lb, const double* ub, const char* vtype,
                               const char* const* names);
    void add_row(int num, const int* col, const double* val, char sense, double rhs, const char* name);
    void add_rows(int num, int num_entries, const int* beg, const int* col, const double* val, const char* sense,
                  const double* rhs, const char* const* names);
    void add_range_row(int num, const int* col, const double* val, double lower, double upper, const char* name);
    // `num` sets of type 1 or 2; beg[k] is the start of set k in col and weight.
    void add_sos(int num, int num_members, const int* type, const int* beg, const int* col, const double* weight);
    void add_quad_row(int num, const int* col, const double* val, int num_quad, const int* qrow, const int* qcol,
                      const double* qval, char sense, double rhs, const char* name);
    void delete_objects(Kind kind, int num, const int* index);
    // number: see ObjectiveWrite.
    void set_objective(int number, int sense, Objective fields, int num, const int* col, const double* val,
                       QuadTerms quad = {});
    // The terms as the store holds them, for variables that a change may name. `what` they belong to is for messages.
    QuadTerms checked_quad(const std::string& what, int num, const int* qrow, const int* qcol,
                           const double* qval) const;
    void set_pwl_obj(int col, PwlPoints points);
    // One value of column or row `index`, or of the model (-1). The caller has checked index and value. `number` is
    // that of the objective, for values that each objective has.
    void write_number(const WriteRule& rule, int index, double value, int number = 0);
    // Makes room for so many writes: they can't fail any more, and the queue isn't moved between them.
    void reserve_writes(int num);
    // A value for each of the objects, or for those of the indices.
    void write_numbers(const WriteRule& rule, const std::vector<int>& values);
    void write_numbers(const WriteRule& rule, const std::vector<int>& index, const std::vector<double>& values);
    // The same for so many texts of `bytes` together.
    void reserve_texts(int num, std::size_t bytes);
    void write_text(const TextRule& rule, int index, std::string value, int number = 0) noexcept;
    // Forgets starts, hints and other information for the solver, queued ones too.
    void drop_hints();

    // Applies the queue, all of it or, on failure, nothing.
    void update();
    // Changes with each update that changes something.
    std::uint64_t stamp = 1;
    // What happened to the numbering since follow_changes() was called.
    Changes changes;
    void follow_changes() { changes = {stamp, {num_cols(), {}}, {num_rows(), {}}}; }

    // Basis statuses of the columns or rows: those set for the next solve, otherwise those of the latest one. nullptr
    // for both when there is no basis.
    struct BasisStatuses {
        const std::vector<double>* set = nullptr;
        const std::vector<int>* solved = nullptr;
    };
    BasisStatuses basis_statuses(Kind kind) const;

    // Index of the object of that name, -1 when there is none.
    int find(Kind kind, std::string_view name);
    int find_col(std::string_view name) { return find(Kind::kColumn, name); }
    int find_row(std::string_view name) { return find(Kind::kRow, name); }
    // The model was changed: solution and session values no longer belong to it.
    void discard_solution();

private:
    friend class Update;

    void check_entries(const char* row_or_col, const char* name, int num, const int* ind, const double* val, int limit);
    std::string_view kept_name(const char* name) const;  // empty under IgnoreNames
    void drop_replaced_texts();

    std::vector<int> mark_;  // of the call that saw an index last, to find duplicates
    int call_ = 0;
    std::array<NameFinder, kNumKinds> finders_;
};

// Why a row can't have this sense and right-hand side, nullptr when it can. `lower` is that of a two-sided row.
const char* side_fault(char sense, double right, double lower);

}  // namespace zelvan
