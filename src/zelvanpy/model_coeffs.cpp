// Reading what the constraints of a model consist of.

#include "exception.h"
#include "model.h"
#include "model_build.h"
#include "model_stranger.h"
#include "pyargs.h"

namespace zelvanpy {

namespace {

// The index of a constraint, linear or quadratic, of this model.
int constraint_index(Model& self, py::handle source) {
    if (!is_constr(source) && !is_qconstr(source)) {
        PyErr_Format(PyExc_TypeError, "%S is not a constraint", source.ptr());
        throw PythonError{};
    }
    const Handle& handle = *as_handle(source);
    if (!model_owns(self, &handle) || handle.cindex() < 0)
        refuse_stranger(self, handle, ZVN_ERROR_NOT_IN_MODEL, "Constraint not in model");
    return handle.cindex();
}

py::object Model_getQCRow(Model& self, Args args) {
    static const Signature<1> kGetQCRow{"getQCRow", 1, {Name("qc")}};
    const auto [qc] = kGetQCRow.parse(args);
    model_setup(self);
    py::object result = owned(new_quadexpr());
    LinExpr* linear = linear_part(as_quadexpr(result));
    require_lists(self);  // making an object may run code of the caller
    const int index = constraint_index(self, qc);
    ZVNmodel* model = model_pointer(self);
    int lnz = 0, qnz = 0;
    check(ZVNgetqconstr(model, index, &lnz, nullptr, nullptr, &qnz, nullptr, nullptr, nullptr), as_object(self));
    std::vector<int> columns(lnz);
    std::vector<double> coeffs(lnz);
    LibraryQuadTerms terms{std::vector<int>(qnz), std::vector<int>(qnz), std::vector<double>(qnz)};
    check(ZVNgetqconstr(model, index, &lnz, columns.data(), coeffs.data(), &qnz, terms.row.data(), terms.col.data(),
                        terms.val.data()),
          as_object(self));
    for (int k = 0; k < lnz; ++k) linexpr_append(linear, coeffs[k], as_handle(PyList_GET_ITEM(self.vars, columns[k])));
    append_quadratic(self, terms, as_quadexpr(result));
    return result;
}

}  // namespace

PyMethodDef model_coeff_methods[] = {
    {"getQCRow", method<Model_getQCRow>, kKeywords,
     "getQCRow($self, qc)\n--\n\n"
     "The left side of a quadratic constraint as of the last update (QuadExpr), without its right side.\n\n"
     "Raises TypeError for anything but a constraint, and ZelvanError with ZVN.ERROR_NOT_IN_MODEL for one of another\n"
     "model or without index."},
    {},
};

}  // namespace zelvanpy
