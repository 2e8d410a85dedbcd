#pragma once
// A model: its data as of the last update, the queue of changes since then, its own environment and
// the solution of the latest solve.

#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/env.h"
#include "core/error.h"
#include "core/model_data.h"
#include "core/solution.h"

namespace zelvan {

class HighsSession;  // the kept HiGHS instance, solve/highs.h

// One queued change of a value. The update first appends the queued columns and rows, then applies the
// writes in their order, then the deletions; so a write may name a queued object.
struct Write {
    int attr;    // attribute number, or one of the kinds below with `index` into the queue's payloads
    int number;  // objective number of the ObjN... attributes, otherwise 0
    int index;   // column or row; -1 for a model attribute
    double value;

    static constexpr int kText = -1, kObjective = -2, kPwl = -3;
};
struct TextWrite {
    int attr;
    int number;
    int index;
    std::string value;
};
// A whole objective: all coefficients 0, then these terms added. Number 0 is the main objective, number -1
// the main objective without the fields that only several objectives have.
struct ObjectiveWrite {
    int sense;  // 0 leaves the sense
    int number;
    int num_cols;      // columns known when it was queued; later ones keep their own coefficient
    Objective fields;  // constant, and for number >= 0 the other fields. coeff stays empty
    std::vector<int> col;
    std::vector<double> val;
};
struct PwlWrite {
    int col;
    PwlPoints points;  // empty removes the term
};

// Additions are numbered behind the objects of the model; entries of rows and members may name queued columns.
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
    std::vector<int> deleted_cols, deleted_rows;
    int num_objectives = -1;  // after the writes so far; -1 where they leave the number

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
    int col_limit() const;
    int row_limit() const;

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
    void delete_cols(int num, const int* col);
    void delete_rows(int num, const int* row);
    // number: see ObjectiveWrite.
    void set_objective(int number, int sense, Objective fields, int num, const int* col, const double* val);
    void set_pwl_obj(int col, PwlPoints points);
    // Attributes of columns (LB, UB, Obj, VType, an optional one, ...), rows (Sense, RHS, ...) or the model
    // (index -1: ModelSense, ObjCon, ...). The caller has checked index and value. `number` selects the
    // objective of an ObjN... attribute.
    void write_number(int attr, int index, double value, int number = 0);
    // Makes room for so many writes: they can't fail any more, and the queue isn't moved between them.
    void reserve_writes(int num);
    void write_text(int attr, int index, std::string_view value, int number = 0);

    void update();

    // Index of the column or row of that name, -1 when there is none.
    int find_col(std::string_view name);
    int find_row(std::string_view name);
    // The model was changed: solution and session values no longer belong to it.
    void discard_solution();

private:
    void check_entries(const char* row_or_col, const char* name, int num, const int* ind, const double* val, int limit);
    void append_entries(int num, const int* col, const double* val);
    std::string_view kept_name(const char* name) const;  // empty under IgnoreNames
    bool changes_problem() const;
    void splice_columns();
    void splice_rows();
    void splice_helpers();
    void apply_writes();
    void apply_number(const Write& write);
    void apply_text(const TextWrite& write);
    void apply_objective(const ObjectiveWrite& write);
    void remove_deleted_cols();
    void remove_deleted_rows();

    std::vector<int> mark_;  // of the call that saw an index last, to find duplicates
    int call_ = 0;
    std::unordered_map<std::string_view, int> col_index_, row_index_;  // views into data.*.names
    bool col_index_valid_ = false, row_index_valid_ = false;
};

}  // namespace zelvan
