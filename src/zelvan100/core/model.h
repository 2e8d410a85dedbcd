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

// One queued write to a column or row that exists in ModelData, or to the model itself; the update
// applies them in their order. Writes to queued columns and rows go into the queued arrays at once.
struct Write {
    int attr;      // attribute number, or one of the kinds below with `index` into the queue's payloads
    int number;    // objective number of the ObjN... attributes, otherwise 0
    int index;     // column or row; -1 for a model attribute
    double value;

    static constexpr int kText = -1, kObjective = -2, kObjectiveN = -3, kPwl = -4;
};
struct TextWrite {
    int attr;
    int number;
    int index;
    std::string value;
};
// A whole objective: all coefficients 0, then these terms added. Number 0 is the main objective.
struct ObjectiveWrite {
    int sense;  // 0 leaves the sense
    int number;
    Objective fields;  // constant; for number > 0 also the other fields. coeff stays empty
    std::vector<int> col;
    std::vector<double> val;
};
struct PwlWrite {
    int col;
    PwlPoints points;  // empty removes the term
};

struct Queue {
    Columns cols;  // additions, numbered behind the columns of the model
    Rows rows;     // additions; their entries may name queued columns
    struct Entry {
        int row, col;
        double val;
    };
    std::vector<Entry> entries;       // of new columns in rows old or queued
    std::vector<Write> writes;
    std::vector<TextWrite> texts;
    std::vector<ObjectiveWrite> objectives;
    std::vector<PwlWrite> pwl;
    std::vector<int> deleted_cols, deleted_rows;
    struct Helper {
        int row;  // index among the queued rows
        double width;
    };
    std::vector<Helper> helpers;  // range rows that get a helper column at the update

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
    bool watch_signal = false;              // ZVNsetsignal was called for the next solve
    std::unique_ptr<HighsSession> session;  // made by the first solve

    int num_cols() const { return data.cols.size(); }
    int num_rows() const { return data.rows.size(); }
    // One past the last index that a change may name: under UpdateMode 1 queued objects count.
    int col_limit() const;
    int row_limit() const;

    // --- changes, queued; each throws Error before anything is queued
    void add_cols(int num, const double* obj, const double* lb, const double* ub, const char* vtype,
                  const char* const* names);
    void add_col_entries(int col, int num, const int* row, const double* val);
    void add_row(int num, const int* col, const double* val, char sense, double rhs, std::string_view name);
    void add_range_row(int num, const int* col, const double* val, double lower, double upper, std::string_view name);
    void delete_cols(int num, const int* col);
    void delete_rows(int num, const int* row);
    void set_objective(int sense, double constant, int num, const int* col, const double* val);
    void set_objective_n(int number, Objective fields, int num, const int* col, const double* val);
    void set_pwl_obj(int col, PwlPoints points);
    // Attributes of columns (LB, UB, Obj, VType, an optional one, ...), rows (Sense, RHS, ...) or the model
    // (index -1: ModelSense, ObjCon, ...). The caller has checked index and value. `number` selects the
    // objective of an ObjN... attribute.
    void write_number(int attr, int index, double value, int number = 0);
    void write_text(int attr, int index, std::string_view value, int number = 0);

    void update();

    // Index of the column or row of that name, -1 when there is none.
    int find_col(std::string_view name);
    int find_row(std::string_view name);
    // The model was changed: solution and session values no longer belong to it.
    void discard_solution();

private:
    std::unordered_map<std::string_view, int> col_index_, row_index_;  // views into data.*.names
    bool col_index_valid_ = false, row_index_valid_ = false;
};

}  // namespace zelvan
