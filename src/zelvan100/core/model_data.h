#pragma once
// What a model says, without environment, queue or solution: readers make it, writers and the solve
// driver take it.

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "core/infinity.h"
#include "core/kinds.h"
#include "core/names.h"
#include "core/optional_values.h"
#include "core/quad.h"
#include "core/sparse.h"

namespace zelvan {

// What objects of every kind have.
struct Identity {
    Names names;
    Names tags;
    OptionalValues optional;
};

// Sides of a row of sense '<', '>' or '=', infinite where it has none.
inline std::pair<double, double> sides_of(char sense, double right) {
    right = clipped(right);
    return {sense == '<' ? -kInfinity : right, sense == '>' ? kInfinity : right};
}

// Columns as parallel arrays. Bounds of magnitude kInfinityThreshold and above are stored as +-kInfinity.
struct Columns : Identity {
    static constexpr Kind kKind = Kind::kColumn;
    std::vector<double> lb, ub, obj;
    std::vector<char> type;  // 'C', 'B', 'I', 'S', 'N'

    int size() const { return static_cast<int>(lb.size()); }
    void push_back(double lower, double upper, double cost, char vtype, std::string_view name);
};

// Rows in one row-major store. sense 'R' marks a two-sided row: lower[i] <= row <= rhs[i]; `lower` of other rows is
// -kInfinity and means nothing.
struct Rows : Identity, SparseRows {
    static constexpr Kind kKind = Kind::kRow;
    std::vector<char> sense;  // '<', '>', '=', 'R'
    std::vector<double> rhs;
    std::vector<double> lower;

    int size() const { return static_cast<int>(rhs.size()); }
    // Sides of row i, infinite where it has none.
    std::pair<double, double> sides(int i) const {
        if (sense[i] == 'R') return {clipped(lower[i]), clipped(rhs[i])};
        return sides_of(sense[i], rhs[i]);
    }
    // Both close a row whose entries were pushed to col and val.
    void push_back(char row_sense, double right, std::string_view name);
    void push_back_range(double left, double right, std::string_view name);
};

// Special ordered sets: of type 1 at most one member is not 0, of type 2 at most two, which are neighbours in the
// order of the weights. Members lie in the sparse rows, with their weights as values.
struct SosSets : Identity, SparseRows {
    static constexpr Kind kKind = Kind::kSos;
    std::vector<char> type;  // 1 or 2

    int size() const { return static_cast<int>(type.size()); }
    // Closes a set whose members were pushed to col and val.
    void push_back(int sos_type, std::string_view name);
};

// Quadratic constraints: linear terms in the sparse rows, then the quadratic terms of all of them one behind the other,
// those of constraint i from quad_start[i] on.
struct QuadRows : Identity, SparseRows {
    static constexpr Kind kKind = Kind::kQuadRow;
    QuadTerms quad;
    std::vector<std::int64_t> quad_start{0};
    std::vector<char> sense;  // '<', '>', '='
    std::vector<double> rhs;

    int size() const { return static_cast<int>(rhs.size()); }
    // Closes a constraint whose terms were pushed to col and val and to quad.
    void push_back(char row_sense, double right, std::string_view name);
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
    SparseVector coeff;  // empty for objective 0
};

ColumnMajor by_columns(const SparseRows& rows, int num_cols);

inline constexpr int kMaxObjectives = 1000000;

using PwlPoints = std::vector<std::pair<double, double>>;  // (x, y), x not decreasing

// What is wrong with point k of a piecewise-linear function, those before it being right; nullptr when nothing is.
const char* point_fault(const PwlPoints& points, std::size_t k);

// The objects of a model, or those that wait for its update.
struct Families {
    Columns cols;
    Rows rows;
    SosSets sos;
    QuadRows qrows;

    int size(Kind kind) const;
    bool has_objects() const;
    // What the objects of a kind have; the kind is one of those that are kept here.
    Identity& family(Kind kind);
    const Identity& family(Kind kind) const;
};

template <class F, class Body>
void for_each_family(F& families, Body&& body) {
    body(families.cols);
    body(families.rows);
    body(families.sos);
    body(families.qrows);
}

struct ModelData : Families {
    std::string name;
    int sense = 1;  // 1 minimizes, -1 maximizes
    double obj_constant = 0.0;
    QuadTerms quad_obj;                 // of the main objective
    std::vector<Objective> objectives;  // empty, or objective 0 and the further ones
    std::map<int, PwlPoints> pwl_obj;   // by column; its obj is then 0

    bool is_mip() const;  // an integer, semi-continuous or semi-integer column, or an SOS
    // Default names of unnamed objects.
    static std::string default_col_name(int j) { return default_name(Kind::kColumn, j); }
    static std::string default_row_name(int i) { return default_name(Kind::kRow, i); }
    static std::string default_name(Kind kind, int i) { return spec_of(kind).prefix + std::to_string(i); }
    std::string col_name(int j) const { return name_of(Kind::kColumn, j); }
    std::string row_name(int i) const { return name_of(Kind::kRow, i); }
    // The object's name, or its default one.
    std::string name_of(Kind kind, int i) const;
    void drop_names();  // of all objects
};

}  // namespace zelvan
