#pragma once
// Arrays of linear expressions, in two forms: compact, as sums of sparse matrices times vectors of variables plus
// constants, and full, as an array of LinExpr. The algebra is in mlinexpr_add, mlinexpr_mul and mlinexpr_matmul.

#include <memory>
#include <vector>

#include "linexpr.h"
#include "matrix.h"
#include "mlinexpr_rows.h"
#include "util.h"

namespace zelvanpy {

// The constants of a compact expression: one number for all cells until they differ or someone asks for the array.
struct Constants {
    Shape shape;
    double fill = 0.0;
    py::object array;  // of doubles in C order; empty while all are `fill`

    Constants(const Shape& of, double value) : shape(of), fill(value) {}
    explicit Constants(py::object doubles) : shape(shape_of(doubles)), array(std::move(doubles)) {}
    Constants copy() const;
    // The array, which is made where there is none yet.
    const py::object& stored();
    // The constants in order; null where all are `fill`. Throws where someone changed the array's shape.
    const double* data() const;
};

struct CompactForm {
    Constants constants;
    std::vector<Block> blocks;

    std::size_t num_parts() const;
    void join_parts();  // as one part; the blocks stay
};

// Variables times numbers, cell by cell with broadcasting: a full form whose cells nobody has asked for yet.
struct ScaledVars {
    py::object vars, factors;  // arrays of Var and of finite doubles, which nobody changes
    Shape shape;
};

struct MLinExpr {
    PyObject_HEAD PyObject* learr;  // the cells of the full form
    CompactForm* compact;           // null in full form
    ScaledVars* scaled;             // null once there are cells
    PyObject* dict;
    PyObject* weakrefs;
};

inline MLinExpr& as_mlinexpr(py::handle h) { return *reinterpret_cast<MLinExpr*>(h.ptr()); }
inline py::handle object_of(MLinExpr& self) { return reinterpret_cast<PyObject*>(&self); }

// Whether a compact expression can have the shape: a vector, if lengths of 1 don't count.
bool allows_compact(const Shape& shape);
// Whether new results of the class may be compact.
bool keeps_compact(PyTypeObject* type);
// The road of an operator: a full expression, and one of a class that shall not be compact, which is converted.
bool takes_compact_road(MLinExpr& self);

// New expressions, of exact type unless `type` says otherwise.
py::object new_mlinexpr(CompactForm form, PyTypeObject* type = MLinExpr_Type);
py::object wrap_cells(py::object learr, PyTypeObject* type = MLinExpr_Type);
py::object wrap_scaled(ScaledVars scaled);
py::object mlinexpr_zeros(const Shape& shape, PyTypeObject* type = MLinExpr_Type);
py::object mlinexpr_zeros_full(const Shape& shape, PyTypeObject* type = MLinExpr_Type);

Shape mlinexpr_shape(MLinExpr& self);
// The form with its data; throws where there is none.
CompactForm& compact_of(MLinExpr& self);
// The cells of a full expression, kept alive, which are made where nobody asked before; throws where it is compact or
// was not initialised.
py::object cells_of(MLinExpr& self);
// The LinExpr in a cell; TypeError for any other object.
py::object linexpr_at(const char* cell);

py::object mlinexpr_to_full(MLinExpr& self);
void mlinexpr_convert_to_full(MLinExpr& self);
// Takes over the cells of another expression, which is full.
void mlinexpr_become_full(MLinExpr& self, py::handle full);
// The expression if it is full, otherwise a new one that is.
py::object full_of(py::handle mlinexpr);
py::object mlinexpr_copy(MLinExpr& self);
py::object copied_cells(py::handle learr);
// Blocks for another expression.
std::vector<Block> shared_blocks(const CompactForm& form);
// All parts as one with stored entries; there must be blocks.
Block& single_block(CompactForm& form);

}  // namespace zelvanpy
