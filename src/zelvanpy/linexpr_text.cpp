#include "linexpr_text.h"

#include <memory>

#include "var.h"

namespace zelvanpy {

namespace {
py::object repr_text(double value) { return number_text(value, 'r', 0, Py_DTSF_ADD_DOT_0); }
}  // namespace

py::object number_text(double value, char format, int precision, int flags) {
    const std::unique_ptr<char, decltype(&PyMem_Free)> text(
        PyOS_double_to_string(value, format, precision, flags, nullptr), PyMem_Free);
    if (!text) throw PythonError{};
    return py::str(text.get());
}

void append_coefficient(py::list& pieces, double coeff) {
    if (coeff == 1.0) return;
    pieces.append(repr_text(coeff));
    pieces.append(py::str(" "));
}

py::object var_text(Handle* var) {
    const SafeName name = safe_name(var);
    if (!name.pending && !name.removed) return name.text;
    return steal(PyObject_Repr(reinterpret_cast<PyObject*>(var)));
}

py::object joined(const py::list& pieces) { return py::str("").attr("join")(pieces); }

py::object linexpr_text(LinExpr* e) {
    linexpr_flatten(e);
    py::list pieces;
    if (e->constant != 0.0)
        pieces.append(repr_text(e->constant));
    else if (e->size == 0)
        return py::str("0.0");
    // The text of a variable may be made by Python code that changes the expression.
    for (std::uint32_t i = 0; i < e->size; ++i) {
        const Term term = e->terms[i];
        const py::object keep = borrow(reinterpret_cast<PyObject*>(term.var));
        if (i > 0 || e->constant != 0.0) pieces.append(py::str(" + "));
        append_coefficient(pieces, term.coeff);
        pieces.append(var_text(term.var));
    }
    return joined(pieces);
}

}  // namespace zelvanpy
