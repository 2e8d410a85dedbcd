#include "expr_methods.h"

#include "pynames.h"

namespace zelvanpy {

bool is_same(Handle* var, Handle* other) {
    if (var == other) return true;
    if (is_inert(var) && is_inert(other)) return var->cmodel == other->cmodel && var->index == other->index;
    static const Name kSameAs("sameAs");
    const py::object same = steal(PyObject_CallMethodObjArgs(reinterpret_cast<PyObject*>(var), kSameAs.get(),
                                                             reinterpret_cast<PyObject*>(other), nullptr));
    return checked(PyObject_IsTrue(same.ptr()));
}

}  // namespace zelvanpy
