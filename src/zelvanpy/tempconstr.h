#pragma once
// The inert record of a comparison.

#include "dormant.h"
#include "pybase.h"

namespace zelvanpy {

struct TempConstr {
    PyObject_HEAD PyObject* lhs;
    PyObject* rhs;
    DormantLink link;
    char sense;  // '<', '>', '=', or 'I' for the indicator form
};

extern PyTypeObject* TempConstr_Type;

inline bool is_tempconstr(py::handle h) {
    return Py_TYPE(h.ptr()) == TempConstr_Type || PyObject_TypeCheck(h.ptr(), TempConstr_Type);
}

// Takes over both references.
PyObject* new_tempconstr(py::object lhs, char sense, py::object rhs);

void init_tempconstr(py::module_& module);

}  // namespace zelvanpy
