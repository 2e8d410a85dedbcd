#include "pytype.h"

#include <cstring>

namespace zelvanpy {

PyTypeObject* make_type(py::module_& module, PyType_Spec& spec, PyObject* bases) {
    py::object base_tuple;
    if (bases) base_tuple = PyTuple_Check(bases) ? borrow(bases) : steal(PyTuple_Pack(1, bases));
    py::object type = steal(PyType_FromSpecWithBases(&spec, base_tuple.ptr()));
    const char* dot = std::strrchr(spec.name, '.');
    module.add_object(dot ? dot + 1 : spec.name, type);
    return reinterpret_cast<PyTypeObject*>(type.release().ptr());
}

}  // namespace zelvanpy
