#include "expr_ops.h"

#include "tempconstr.h"

namespace zelvanpy {

PyObject* compare_expr(py::handle self, py::handle other, int op) {
    switch (op) {
        case Py_EQ:
            if (other.is_none()) return boolean(false).release().ptr();
            return new_tempconstr(borrow(self), '=', borrow(other));
        case Py_LE:
            return new_tempconstr(borrow(self), '<', borrow(other));
        case Py_GE:
            return new_tempconstr(borrow(self), '>', borrow(other));
        case Py_NE:
            raise_zelvan(0, "Inequality constraints not supported");
        default:
            raise_from(steal(PyObject_CallObject(PyExc_NotImplementedError, nullptr)),
                       steal(PyObject_CallFunction(PyExc_TypeError, "s", kNoStrictConstraints)));
    }
}

PyObject* expr_radd(py::handle self, py::handle expr) { return PyNumber_Add(self.ptr(), expr.ptr()); }
PyObject* expr_rmul(py::handle self, py::handle expr) { return PyNumber_Multiply(self.ptr(), expr.ptr()); }

}  // namespace zelvanpy
