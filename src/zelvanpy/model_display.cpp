// What notebooks show of models, handles and expressions, as HTML. Names stand in <code>: outside it, notebooks
// take text between two $ for a formula.

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

#include "model.h"
#include "pycontainer.h"
#include "quadexpr.h"
#include "statusconst.h"
#include "tempconstr.h"
#include "var.h"

namespace zelvanpy {

namespace {

constexpr std::uint32_t kShownTerms = 30;
constexpr std::size_t kShownText = 200;

std::string escaped(const std::string& text) {
    std::string html;
    for (const char c : text) switch (c) {
            case '&':
                html += "&amp;";
                break;
            case '<':
                html += "&lt;";
                break;
            case '>':
                html += "&gt;";
                break;
            default:
                html += c;
        }
    return html;
}

// A text that may hold surrogates, cut where it is long.
std::string code(py::handle text) {
    const py::object start = steal(PyUnicode_Substring(text.ptr(), 0, kShownText));
    const py::object bytes = steal(PyUnicode_AsEncodedString(start.ptr(), "utf-8", "replace"));
    const bool is_cut = PyUnicode_GET_LENGTH(text.ptr()) > static_cast<Py_ssize_t>(kShownText);
    return "<code>" + escaped(PyBytes_AS_STRING(bytes.ptr())) + (is_cut ? "…" : "") + "</code>";
}

std::string number(double value) {
    if (value >= ZVN_INFINITY) return "∞";
    if (value <= -ZVN_INFINITY) return "−∞";
    const std::unique_ptr<char, decltype(&PyMem_Free)> text(PyOS_double_to_string(value, 'g', 12, 0, nullptr),
                                                            PyMem_Free);
    if (!text) throw PythonError{};
    return text.get();
}

// The sign before a term or constant, and its magnitude.
std::string sign(double value, bool is_first) {
    if (is_first) return value < 0 ? "−" : "";
    return value < 0 ? " − " : " + ";
}

std::string var_html(Handle* var) {
    const py::object keep = borrow(reinterpret_cast<PyObject*>(var));
    return code(safe_name(var).text);
}

// A sum under construction, of which the first terms are shown.
class SumHtml {
public:
    bool is_full() const { return terms_ >= kShownTerms; }
    void add(double coeff, const std::string& product) {
        html_ += sign(coeff, terms_++ == 0);
        if (std::abs(coeff) != 1.0) html_ += number(std::abs(coeff)) + " ";
        html_ += product;
    }
    std::string finish(std::size_t all_terms, double constant) && {
        if (all_terms > terms_) html_ += " + … (" + std::to_string(all_terms - terms_) + " more terms)";
        if (constant != 0.0 || terms_ == 0) html_ += sign(constant, terms_ == 0) + number(std::abs(constant));
        return std::move(html_);
    }

private:
    std::string html_;
    std::size_t terms_ = 0;
};

void add_linear(SumHtml& sum, const LinExpr* e) {
    for (std::uint32_t i = 0; i < e->size && !sum.is_full(); ++i) sum.add(e->terms[i].coeff, var_html(e->terms[i].var));
}

void add_quadratic(SumHtml& sum, const QuadExpr* e) {
    for (std::uint32_t i = 0; i < e->size && !sum.is_full(); ++i) {
        const QuadTerm& term = e->terms[i];
        const std::string first = var_html(term.var1);
        sum.add(term.coeff, term.var1 == term.var2 ? first + "²" : first + " " + var_html(term.var2));
    }
}

// Works on a copy: the texts of variables may be made by code that changes the expression.
std::string linexpr_html(py::handle expr) {
    const py::object flat = owned(linexpr_copy(as_linexpr(expr)));
    const LinExpr* e = as_linexpr(flat);
    linexpr_flatten(as_linexpr(flat));
    SumHtml sum;
    add_linear(sum, e);
    return std::move(sum).finish(e->size, e->constant);
}

std::string quadexpr_html(py::handle expr) {
    const py::object flat = owned(quadexpr_copy(as_quadexpr(expr)));
    const QuadExpr* e = as_quadexpr(flat);
    quadexpr_flatten(as_quadexpr(flat));
    const LinExpr* linear = linear_part(as_quadexpr(flat));
    linexpr_flatten(linear_part(as_quadexpr(flat)));
    SumHtml sum;
    add_linear(sum, linear);
    add_quadratic(sum, e);
    return std::move(sum).finish(std::size_t{linear->size} + e->size, linear->constant);
}

std::string tempconstr_html(py::handle constr);

std::string side_html(py::handle side) {
    if (is_linexpr(side)) return linexpr_html(side);
    if (is_quadexpr(side)) return quadexpr_html(side);
    if (is_var(side)) return var_html(as_handle(side));
    if (is_tempconstr(side)) return "(" + tempconstr_html(side) + ")";
    if (PyFloat_CheckExact(side.ptr())) return number(PyFloat_AS_DOUBLE(side.ptr()));
    if (PyLong_CheckExact(side.ptr())) return py::str(side);
    return code(py::str(side));
}

std::string tempconstr_html(py::handle object) {
    const NestingLevel level(" while a constraint is shown");
    const auto* constr = reinterpret_cast<TempConstr*>(object.ptr());
    const py::object lhs = borrow(constr->lhs), rhs = borrow(constr->rhs);
    const char* sense = constr->sense == '<' ? "≤" : constr->sense == '>' ? "≥" : constr->sense == 'I' ? "⇒" : "=";
    return side_html(lhs) + " " + sense + " " + side_html(rhs);
}

// The attribute of a live variable or constraint; false where it can't be read now.
bool element(const Handle& handle, const char* attribute, double& value) {
    const int index = handle.cindex();
    ZVNmodel* model = model_pointer(handle.cmodel);
    return model && index >= 0 && !ZVNgetdblattrelement(model, attribute, index, &value);
}

int int_attribute(ZVNmodel* model, const char* attribute) {
    int value = 0;
    ZVNgetintattr(model, attribute, &value);
    return value;
}

bool has_solution(ZVNmodel* model) { return int_attribute(model, "SolCount") > 0; }

PyObject* html_of(const std::string& html) {
    return PyUnicode_FromStringAndSize(html.data(), static_cast<Py_ssize_t>(html.size()));
}

PyObject* Var_html(Handle& self) {
    std::string html = var_html(&self);
    double value;
    if (has_solution(model_pointer(self.cmodel)) && element(self, "X", value)) html += " = " + number(value);
    return html_of(html);
}

// A constraint by its name, sense and right side, whose attributes are named.
PyObject* row_html(Handle& self, const char* name_attr, const char* sense_attr, const char* rhs_attr) {
    char *name = nullptr, sense = 0;
    double rhs;
    ZVNmodel* model = model_pointer(self.cmodel);
    if (!element(self, rhs_attr, rhs) || ZVNgetcharattrelement(model, sense_attr, self.cindex(), &sense) ||
        ZVNgetstrattrelement(model, name_attr, self.cindex(), &name))
        return html_of(code(steal(PyObject_Repr(reinterpret_cast<PyObject*>(&self)))));
    const std::string sign = sense == '<' ? "≤" : sense == '>' ? "≥" : "=";
    return html_of(code(message_to_str(name)) + ": … " + sign + " " + number(rhs));
}

PyObject* Constr_html(Handle& self) { return row_html(self, "ConstrName", "Sense", "RHS"); }
PyObject* QConstr_html(Handle& self) { return row_html(self, "QCName", "QCSense", "QCRHS"); }
PyObject* LinExpr_html(py::handle self) { return html_of(linexpr_html(self)); }
PyObject* QuadExpr_html(py::handle self) { return html_of(quadexpr_html(self)); }
PyObject* TempConstr_html(py::handle self) { return html_of(tempconstr_html(self)); }

PyObject* Model_html(Model& self) {
    ZVNmodel* model = model_pointer(self);
    if (!model) return html_of("<em>a freed model</em>");
    std::string rows;
    const auto row = [&](const char* head, const std::string& cell) {
        rows += std::string("<tr><th>") + head + "</th><td>" + cell + "</td></tr>";
    };
    const auto count = [&](const char* attribute) { return std::to_string(int_attribute(model, attribute)); };
    const int status = int_attribute(model, "Status");
    double objective = 0.0;
    char* name = nullptr;
    ZVNgetstrattr(model, "ModelName", &name);
    const py::object title = name && *name ? message_to_str(name) : py::object(py::str("Unnamed"));
    row("Sense", int_attribute(model, "ModelSense") < 0 ? "maximize" : "minimize");
    row("Variables", count("NumVars") + " (" + count("NumIntVars") + " integer)");
    row("Constraints", count("NumConstrs"));
    if (int_attribute(model, "NumQConstrs") > 0) row("Quadratic constraints", count("NumQConstrs"));
    row("Nonzeros", count("NumNZs"));
    row("Status", status_name(status));
    if (has_solution(model) && !ZVNgetdblattr(model, "ObjVal", &objective)) row("Objective", number(objective));
    return html_of("<table><caption>" + code(title) + "</caption>" + rows + "</table>");
}

constexpr char kDoc[] = "_repr_html_($self, /)\n--\n\nWhat a notebook shows (str of HTML).";

struct Display {
    PyTypeObject** type;
    PyMethodDef method;
};
Display displays[] = {
    {&Var_Type, {"_repr_html_", method<Var_html>, METH_NOARGS, kDoc}},
    {&Constr_Type, {"_repr_html_", method<Constr_html>, METH_NOARGS, kDoc}},
    {&QConstr_Type, {"_repr_html_", method<QConstr_html>, METH_NOARGS, kDoc}},
    {&LinExpr_Type, {"_repr_html_", method<LinExpr_html>, METH_NOARGS, kDoc}},
    {&QuadExpr_Type, {"_repr_html_", method<QuadExpr_html>, METH_NOARGS, kDoc}},
    {&TempConstr_Type, {"_repr_html_", method<TempConstr_html>, METH_NOARGS, kDoc}},
    {&Model_Type, {"_repr_html_", method<Model_html>, METH_NOARGS, kDoc}},
};

}  // namespace

void init_model_display(py::module_&) {
    for (Display& display : displays) {
        const py::object descriptor = steal(PyDescr_NewMethod(*display.type, &display.method));
        checked(PyObject_SetAttrString(reinterpret_cast<PyObject*>(*display.type), display.method.ml_name,
                                       descriptor.ptr()));
    }
}

}  // namespace zelvanpy
