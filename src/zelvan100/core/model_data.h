#pragma once
// What a model says, without environment, queue or solution: readers make it, writers and the solve
// driver take it.

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "core/names.h"

namespace zelvan {

// Magnitude from which a bound or side means infinity, and the value that stands for it in the store.
inline constexpr double kInfinity = 1e100;
inline constexpr double kInfinityThreshold = 1e20;
// The value of an attribute that was never set.
inline constexpr double kUndefined = 1e101;

// Values of an optional attribute (start, priority, ...), kept only for attributes that were set.
struct OptionalValues {
    double unset = kUndefined;
    std::vector<double> values;  // one for each column or row
};

// Columns as parallel arrays. Bounds of magnitude kInfinityThreshold and above are stored as +-kInfinity.
struct Columns {
    std::vector<double> lb, ub, obj;
    std::vector<char> type;  // 'C', 'B', 'I', 'S', 'N'
    Names names;
    Names tags;
    std::map<int, OptionalValues> optional;  // by attribute number (attr/attr.h)

    int size() const { return static_cast<int>(lb.size()); }
    void push_back(double lower, double upper, double cost, char vtype, std::string_view name);
};

// Rows: entries in one row-major store; row i has the entries start[i] .. start[i+1]-1.
// sense 'R' marks a two-sided row: lower[i] <= row <= rhs[i]; `lower` is empty while there is none.
struct Rows {
    std::vector<std::int64_t> start{0};
    std::vector<int> col;
    std::vector<double> val;
    std::vector<char> sense;  // '<', '>', '=', 'R'
    std::vector<double> rhs;
    std::vector<double> lower;
    Names names;
    Names tags;
    std::map<int, OptionalValues> optional;

    int size() const { return static_cast<int>(rhs.size()); }
    std::int64_t num_entries() const { return start.back(); }
    // Sides of row i, infinite where it has none.
    std::pair<double, double> sides(int i) const;
    // Closes a row whose entries were pushed to col and val.
    void push_back(char row_sense, double right, std::string_view name);
    void push_back_range(double left, double right, std::string_view name);
};

// The matrix by columns, made on demand.
struct ColumnMajor {
    std::vector<std::int64_t> start;
    std::vector<int> row;
    std::vector<double> val;
};

// One of several objectives. Objective 0 lies in Columns::obj and takes only the other fields from here.
struct Objective {
    int priority = 0;
    double weight = 1.0;
    double abs_tol = 1e-6;
    double rel_tol = 0.0;
    double constant = 0.0;
    std::string name;
    std::vector<double> coeff;  // one for each column; empty for objective 0
};

using PwlPoints = std::vector<std::pair<double, double>>;  // (x, y), x not decreasing

struct ModelData {
    std::string name;
    int sense = 1;  // 1 minimizes, -1 maximizes
    double obj_constant = 0.0;
    Columns cols;
    Rows rows;
    std::vector<Objective> objectives;  // empty, or objective 0 and the further ones
    std::map<int, PwlPoints> pwl_obj;   // by column; its obj is then 0

    bool is_mip() const;  // an integer, semi-continuous or semi-integer column
    ColumnMajor by_columns() const;
    // Default names of unnamed columns and rows.
    static std::string default_col_name(int j) { return "C" + std::to_string(j); }
    static std::string default_row_name(int i) { return "R" + std::to_string(i); }
    std::string col_name(int j) const;
    std::string row_name(int i) const;
    void drop_names();  // of columns and rows
};

}  // namespace zelvan
