#pragma once
// The inert record of a comparison.

#include "dormant.h"
#include "pybase.h"

namespace zelvanpy {

struct TempConstr {
    PyObject_HEAD PyObject* lhs;
    PyObject* rhs;
    PyObject* other_sense;  // a sense that isn't one of the letters; otherwise null
    DormantLink link;
    char sense;  // '<', '>', '=', or 'I' for the indicator form; 0 with another one
    bool is_set;
};

extern PyTypeObject* TempConstr_Type;

inline bool is_tempconstr(py::handle h) {
    return Py_TYPE(h.ptr()) == TempConstr_Type || PyObject_TypeCheck(h.ptr(), TempConstr_Type);
}

// The sense as one letter for the library. Raises TypeError where it isn't a text.
char sense_letter(const TempConstr& constr);
// Takes over both references.
PyObject* new_tempconstr(py::object lhs, char sense, py::object rhs);

}  // namespace zelvanpy
