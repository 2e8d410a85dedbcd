// addMQConstr, setMObjective and the doors for comparisons of matrix expressions.

#include <cmath>

#include "mconstr.h"
#include "mlinexpr_build.h"
#include "mlinexpr_items.h"
#include "mlinexpr_ops.h"
#include "model_build_names.h"
#include "model_build_rows.h"
#include "model_matrix.h"
#include "mquadexpr_ops.h"
#include "mvar.h"
#include "pyargs.h"
#include "pynumber.h"
#include "quadexpr_build.h"

namespace zelvanpy {

namespace {

bool given(PyObject* argument) { return argument && argument != Py_None; }

// The terms of one quadratic row or objective on their way to the library.
struct QuadraticTerms {
    LibraryTerms linear;
    LibraryQuadTerms quadratic;
    double constant = 0.0;
};

// ---- terms of arguments

void append_vector(Model& self, PyObject* c, PyObject* xc, LibraryTerms& terms) {
    if (matrix_shape(c).ndim != 1) raise_zelvan(-1, "'c' argument must be a 1-D array");
    const py::object mvar = matrix_vars(self, xc ? xc : Py_None);
    const py::object values = private_doubles(is_sparse(c) ? dense_of(c) : borrow(c));
    if (!(mvar_shape(mvar) == shape_of(values))) raise_zelvan(-1, "Incompatible 'c' argument length");
    Vars vars(mvar);
    const std::vector<int> columns = columns_of(self, vars.span());
    terms.reserve(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) terms.add(columns[i], data_of<double>(values)[i]);
}

void append_form(const Model& self, Vars& left, const Rows& rows, double sign, Vars& right, LibraryQuadTerms& terms) {
    const std::vector<int> first = columns_of(self, left.span()), second = columns_of(self, right.span());
    const std::size_t num = rows.num_entries(), before = terms.val.size();
    terms.row.resize(before + num);
    terms.col.resize(before + num);
    terms.val.resize(before + num);
    std::size_t next = before;
    for (Py_intptr_t i = 0; i < rows.num_rows; ++i)
        for (std::int32_t k = rows.begin[i]; k < rows.begin[i + 1]; ++k, ++next) {
            terms.row[next] = first.at(i);
            terms.col[next] = second.at(rows.index[k]);
            terms.val[next] = sign * rows.value[k];
        }
}

SharedRows form_rows(PyObject* matrix) {
    if (is_sparse(matrix)) return rows_of_sparse(matrix, false);
    const py::object array = is_ndarray(matrix) ? borrow(matrix) : private_doubles(matrix);
    if (shape_of(array).ndim > 2) raise(PyExc_TypeError, "'Q' must have at most 2 dimensions");
    static const Name kAtleast("atleast_2d");
    return rows_of_dense(numpy_function(kAtleast)(array), false);
}

// Q and c with their variables, as addMQConstr and setMObjective take them.
QuadraticTerms terms_of(Model& self, PyObject* Q, PyObject* c, PyObject* xQ_L, PyObject* xQ_R, PyObject* xc) {
    QuadraticTerms terms;
    if (given(c)) append_vector(self, c, xc, terms.linear);
    if (!given(Q)) return terms;
    const py::object left = matrix_vars(self, xQ_L ? xQ_L : Py_None), right = matrix_vars(self, xQ_R ? xQ_R : Py_None);
    const SharedRows rows = form_rows(Q);
    if (!(mvar_shape(left) == Shape{rows->num_rows}) || !(mvar_shape(right) == Shape{rows->num_cols}))
        raise_zelvan(-1, "Q and x dimensions do not match");
    Vars first(left), second(right);
    append_form(self, first, *rows, 1.0, second, terms.quadratic);
    return terms;
}

// ---- terms of expressions

// The only cell of an MLinExpr.
void append_linear(Model& self, py::handle mlinexpr, QuadraticTerms& terms) {
    CompactForm* form = as_mlinexpr(mlinexpr).compact;
    if (!form || !form->blocks.empty()) {
        const py::object cell = mlinexpr_item(as_mlinexpr(mlinexpr));
        linexpr_normalize(as_linexpr(cell));
        terms.constant += as_linexpr(cell)->constant;
        return append_terms(self, as_linexpr(cell), 1.0, terms.linear);
    }
    const double* constants = form->constants.data();
    terms.constant += constants ? *constants : form->constants.fill;
}

// The only cell of a compact MQuadExpr.
QuadraticTerms terms_of_cell(Model& self, MQuadExpr& expr) {
    QuadraticTerms terms;
    append_linear(self, linear_half(expr), terms);
    std::vector<QuadPart>& parts = parts_of(expr);
    join_quadparts(parts);
    for (const QuadPart& part : std::vector<QuadPart>(parts)) {
        const SharedRows rows = stored_rows(part.block.rows);
        append_form(self, *part.left, *rows, part.block.sign(), *part.block.vars, terms.quadratic);
    }
    return terms;
}

// ---- the library

py::object add_quadratic(Model& self, QuadraticTerms& terms, char sense, double rhs, const char* name) {
    terms.linear.clean();
    py::object handle = new_member(self, QConstr_Type);
    return add_object(self, Kind::kQConstr, std::move(handle), [&](ZVNmodel* model) {
        return ZVNaddqconstr(model, terms.linear.size(), terms.linear.ind(), terms.linear.val(), terms.quadratic.size(),
                             terms.quadratic.row.data(), terms.quadratic.col.data(), terms.quadratic.val.data(), sense,
                             rhs, name);
    });
}

void set_objective(Model& self, QuadraticTerms& terms, int sense, double constant) {
    check(ZVNsetobjective(model_pointer(self), sense, constant, terms.linear.size(), terms.linear.ind(),
                          terms.linear.val(), terms.quadratic.size(), terms.quadratic.row.data(),
                          terms.quadratic.col.data(), terms.quadratic.val.data()),
          as_object(self));
}

// ---- addMQConstr and setMObjective

double side_of(PyObject* rhs) {
    static const Name kItem("item");
    const py::object number =
        is_ndarray(rhs) ? steal(PyObject_CallMethodObjArgs(rhs, kItem.get(), nullptr)) : borrow(rhs);
    return library_double(float_of(number));
}

py::object Model_addMQConstr(Model& self, Args args) {
    static const Signature<8> kSignature{
        "addMQConstr",
        4,
        {Name("Q"), Name("c"), Name("sense"), Name("rhs"), Name("xQ_L"), Name("xQ_R"), Name("xc"), Name("name")}};
    const auto [Q, c, sense, rhs, xQ_L, xQ_R, xc, name] = kSignature.parse(args);
    const double side = side_of(rhs);
    model_setup(self);
    QuadraticTerms terms = terms_of(self, Q, c, xQ_L, xQ_R, xc);
    const RowName text(name);
    if (!PyUnicode_Check(sense) || PyUnicode_GET_LENGTH(sense) != 1)
        refuse_argument(PyExc_TypeError, {"addMQConstr", "sense"}, "'<', '>' or '='", sense);
    return add_quadratic(self, terms, sense_argument(sense), side, text);
}

void set_m_objective(Model& self, PyObject* Q, PyObject* c, double constant, PyObject* xQ_L, PyObject* xQ_R,
                     PyObject* xc, int sense) {
    QuadraticTerms terms = terms_of(self, Q, c, xQ_L, xQ_R, xc);
    set_objective(self, terms, sense, constant);
}

void Model_setMObjective(Model& self, Args args) {
    static const Signature<7> kSignature{
        "setMObjective",
        3,
        {Name("Q"), Name("c"), Name("constant"), Name("xQ_L"), Name("xQ_R"), Name("xc"), Name("sense")}};
    const auto [Q, c, constant, xQ_L, xQ_R, xc, sense] = kSignature.parse(args);
    model_setup(self);
    const int objsense = given(sense) ? int_of(sense) : 0;
    const double number = float_of(constant);
    set_m_objective(self, Q, c, number, xQ_L, xQ_R, xc, objsense);
}

void Model_v811_setMObjective(Model& self, Args args) {
    static const Signature<2> kSignature{"_v811_setMObjective", 2, {Name("Q"), Name("c")}};
    const auto [Q, c] = kSignature.parse(args);
    model_setup(self);
    set_m_objective(self, Q, c, 0.0, nullptr, nullptr, nullptr, 0);
}

// ---- comparisons

char sense_of(PyObject* sense) { return sense_argument(sense); }

py::object Model_addNDConstr(Model& self, Args args) {
    static const Signature<3> kSignature{"_addNDConstr", 3, {Name("ndle"), Name("sense"), Name("name")}};
    const auto [expr, sense, name] = kSignature.parse(args);
    if (!is_mlinexpr(expr)) raise(PyExc_TypeError, "ndle must be an MLinExpr");
    return add_matrix_constr(self, expr, sense_of(sense), name);
}

py::object Model_addNDQConstr(Model& self, Args args) {
    static const Signature<3> kSignature{"_addNDQConstr", 3, {Name("ndqe"), Name("sense"), Name("name")}};
    const auto [expr, sense, name] = kSignature.parse(args);
    if (!is_mquadexpr(expr)) raise(PyExc_TypeError, "ndqe must be an MQuadExpr");
    return add_matrix_qconstr(self, expr, sense_of(sense), name);
}

// The terms of each cell of a full expression.
std::vector<QuadraticTerms> terms_of_cells(Model& self, MQuadExpr& expr) {
    const py::object cells = quad_cells_of(expr), half = linear_half(expr);
    mlinexpr_convert_to_full(as_mlinexpr(half));
    const py::object linear = cells_of(as_mlinexpr(half));
    const Shape shape = shape_of(cells);
    std::vector<QuadraticTerms> all;
    walk<2>(shape, {cells_in(cells, shape), cells_in(linear, shape)}, [&](const auto& at) {
        const py::object first = quadexpr_at(at[0]), second = linexpr_at(at[1]);
        const py::object sum = owned(quadexpr_copy(as_quadexpr(first)));
        quadexpr_flatten(as_quadexpr(sum));
        LinExpr* constant_and_terms = linear_part(as_quadexpr(sum));
        linexpr_add(constant_and_terms, as_linexpr(second), 1.0);
        linexpr_flatten(constant_and_terms);
        QuadraticTerms terms;
        terms.constant = constant_and_terms->constant;
        append_terms(self, constant_and_terms, 1.0, terms.linear);
        append_terms(self, as_quadexpr(sum), 1.0, terms.quadratic);
        all.push_back(std::move(terms));
    });
    return all;
}

}  // namespace

py::object add_matrix_qconstr(Model& self, py::handle mquadexpr, char sense, py::handle name) {
    MQuadExpr& expr = as_mquadexpr(mquadexpr);
    const Shape shape = mquadexpr_shape(expr);
    NameBuffer names(true);
    const bool is_named = cell_names(names, name, shape) != nullptr;
    model_setup(self);
    const py::object array = new_objects(shape);
    // All cells are read before the first row is added.
    std::vector<QuadraticTerms> rows;
    if (shape.size() > 0 && expr.parts)
        rows.push_back(terms_of_cell(self, expr));
    else if (shape.size() > 0)
        rows = terms_of_cells(self, expr);
    for (std::size_t i = 0; i < rows.size(); ++i)
        data_of<PyObject*>(array)[i] =
            add_quadratic(self, rows[i], sense, library_double(-rows[i].constant), is_named ? names.texts()[i] : "")
                .release()
                .ptr();
    return new_handle_array(MQConstr_Type, array);
}

void set_compact_objective(Model& self, py::handle expr, int sense) {
    const bool is_linear = is_mlinexpr(expr);
    const Shape shape = is_linear ? mlinexpr_shape(as_mlinexpr(expr)) : mquadexpr_shape(as_mquadexpr(expr));
    if (shape.size() != 1) raise(PyExc_ValueError, "can only convert an array of size 1 to a Python scalar");
    QuadraticTerms terms;
    if (is_linear)
        append_linear(self, expr, terms);
    else
        terms = terms_of_cell(self, as_mquadexpr(expr));
    set_objective(self, terms, sense, terms.constant);
}

PyMethodDef model_matrix_quad_methods[] = {
    {"addMQConstr", method<Model_addMQConstr>, kKeywords,
     "addMQConstr($self, Q, c, sense, rhs, xQ_L=None, xQ_R=None, xc=None, name='')\n--\n\n"
     "Add the quadratic constraint xQ_L' Q xQ_R + c' xc (sense) rhs and return its QConstr.\n\n"
     "Q: an ndarray or sparse matrix, or None. c: an array of one dimension, or None. xQ_L, xQ_R, xc: an MVar, a list\n"
     "of Var, or None for all variables. sense: one letter. rhs: a number. Raises ZelvanError for lengths that differ\n"
     "and variables that aren't in the model."},
    {"setMObjective", method<Model_setMObjective>, kKeywords,
     "setMObjective($self, Q, c, constant, xQ_L=None, xQ_R=None, xc=None, sense=None)\n--\n\n"
     "Replace the objective by xQ_L' Q xQ_R + c' xc + constant; arguments as for addMQConstr.\n\n"
     "sense: ZVN.MINIMIZE, ZVN.MAXIMIZE, or None to leave ModelSense."},
    {"_v811_setMObjective", method<Model_v811_setMObjective>, kKeywords,
     "_v811_setMObjective($self, Q, c)\n--\n\nThe same as setMObjective(Q, c, 0)."},
    {"_addNDConstr", method<Model_addNDConstr>, kKeywords,
     "_addNDConstr($self, ndle, sense, name)\n--\n\nAdd the rows ndle (sense) 0 and return their MConstr."},
    {"_addNDQConstr", method<Model_addNDQConstr>, kKeywords,
     "_addNDQConstr($self, ndqe, sense, name)\n--\n\n"
     "Add the quadratic constraints ndqe (sense) 0 and return their MQConstr."},
    {},
};

}  // namespace zelvanpy
