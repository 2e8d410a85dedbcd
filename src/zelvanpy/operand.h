#pragma once
// The operator rules that variables and expressions share: what an operand is, and what the product of two
// expressions is.

#include <cmath>
#include <iterator>

#include "extern.h"
#include "handle.h"
#include "linexpr.h"

namespace zelvanpy {

enum class Operand { kVar, kLinExpr, kScalar, kForeign };

namespace operand_detail {
Operand classify_other(py::handle operand, double& value);
}

// Exact types first; `value` is set for a scalar.
inline Operand classify(py::handle operand, double& value) {
    PyTypeObject* type = Py_TYPE(operand.ptr());
    if (type == Var_Type) return Operand::kVar;
    if (type == LinExpr_Type) return Operand::kLinExpr;
    if (type == &PyFloat_Type) {
        value = PyFloat_AS_DOUBLE(operand.ptr());
        return Operand::kScalar;
    }
    return operand_detail::classify_other(operand, value);
}

// float(object)
double float_of(py::handle object);
// PyFloat_AsDouble, as math.isnan() converts its argument.
inline double as_double(py::handle object) {
    if (PyFloat_CheckExact(object.ptr())) return PyFloat_AS_DOUBLE(object.ptr());
    return checked_double(PyFloat_AsDouble(object.ptr()));
}
// isinstance(object, collections.abc.Iterable)
bool is_iterable(py::handle object);

// The number that a list index is. Its __index__() may be anyone's code and change what the index is for, so sizes
// are read afterwards.
Py_ssize_t list_index(py::handle index);
// The position that it means, where negative ones count from the end; IndexError beyond.
std::size_t list_position(Py_ssize_t index, std::size_t size);

// A subclass of `own` made in Python would find + by the methods __add__ and __radd__, and `x + s` with s of the
// subclass would come out as `s + x`, because __radd__ is a method of its own. Unless the subclass has such methods
// itself, it gets the operators of `own`.
void inherit_operators(PyTypeObject* type, PyTypeObject* own);

// numpy's scalars then leave `2.0 * x` and `1.0 <= x` to the operators of the class, while its arrays go on
// cell by cell: their priority is 0, that of scalars -1000000.
void prefer_to_numpy_scalars(PyTypeObject* type);

inline PyObject* not_implemented() {
    Py_INCREF(Py_NotImplemented);
    return Py_NotImplemented;
}

// A new reference to an expression as the result of an operator.
inline PyObject* as_result(LinExpr* e) { return reinterpret_cast<PyObject*>(e); }
inline py::object owned(LinExpr* e) { return py::reinterpret_steal<py::object>(reinterpret_cast<PyObject*>(e)); }

// e.__iadd__(operand), e.__isub__(operand), e.__imul__(operand): new references, to e or NotImplemented;
// __imul__ may also give another object.
PyObject* linexpr_iadd(py::handle e, py::handle operand);
PyObject* linexpr_isub(py::handle e, py::handle operand);
PyObject* linexpr_imul(py::handle e, py::handle operand);
// left + right, left * right, where one of them is a LinExpr.
PyObject* linexpr_plus(py::handle left, py::handle right);
PyObject* linexpr_multiply(py::handle left, py::handle right);

// The product of two expressions of which neither is constant.
py::object product_of_expressions(py::handle left, py::handle right);

// Slots of LinExpr for operators and comparisons.
extern PyType_Slot linexpr_operator_slots[];
extern const int num_linexpr_operator_slots;

}  // namespace zelvanpy
