#pragma once
// A column of the constraint matrix under construction.

#include <vector>

#include "handle.h"
#include "pybase.h"

namespace zelvanpy {

// Coefficients and the rows they belong to.
struct Column {
    PyObject_HEAD std::vector<double> coeffs;
    std::vector<py::object> constrs;  // parallel to coeffs; nothing is tested here, duplicates allowed
};

extern PyTypeObject* Column_Type;

inline bool is_column(py::handle h) { return PyObject_TypeCheck(h.ptr(), Column_Type); }
inline Column& as_column(py::handle h) { return *reinterpret_cast<Column*>(h.ptr()); }

py::object new_column(std::vector<double> coeffs, std::vector<py::object> constrs);
// Merges entries of the same Constr object into the first of them and drops zeros.
void column_normalize(Column& column);

}  // namespace zelvanpy
