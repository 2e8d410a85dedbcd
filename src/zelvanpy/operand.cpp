#include "operand.h"

namespace zelvanpy {

namespace operand_detail {

Operand classify_other(py::handle operand, double& value) {
    PyTypeObject* type = Py_TYPE(operand.ptr());
    if (type == &PyLong_Type || PyFloat_Check(operand.ptr())) {
        value = PyFloat_AsDouble(operand.ptr());
        if (value != -1.0 || !PyErr_Occurred()) return Operand::kScalar;
        PyErr_Clear();
        return Operand::kForeign;
    }
    if (PyType_IsSubtype(type, Var_Type)) return Operand::kVar;
    if (PyType_IsSubtype(type, LinExpr_Type)) return Operand::kLinExpr;
    if (PyType_IsSubtype(type, QuadExpr_Type)) return Operand::kQuadExpr;
    return scalar_value(operand, value) ? Operand::kScalar : Operand::kForeign;
}

}  // namespace operand_detail

}  // namespace zelvanpy
