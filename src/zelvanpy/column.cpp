#include "column.h"

#include <unordered_map>

#include "exception.h"
#include "pyargs.h"
#include "pynumber.h"
#include "pytype.h"

namespace zelvanpy {

PyTypeObject* Column_Type = nullptr;

namespace {

py::handle object_of(Column& self) { return reinterpret_cast<PyObject*>(&self); }
[[noreturn]] void raise_invalid(py::handle text) { raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, text); }

PyObject* Column_new(PyTypeObject* type, py::handle, py::handle) {
    PyObject* self = type->tp_alloc(type, 0);
    if (!self) throw PythonError{};
    new (&as_column(self).coeffs) std::vector<double>();
    new (&as_column(self).constrs) std::vector<py::object>();
    return self;
}

void append(Column& self, double coeff, py::handle constr) {
    self.constrs.reserve(self.constrs.size() + 1);
    self.coeffs.push_back(coeff);
    self.constrs.push_back(borrow(constr));
}

// Both sequences, read before anything of the column changes.
struct Entries {
    std::vector<double> coeffs;
    std::vector<py::object> constrs;
};

Entries read_entries(py::handle coeffs, py::handle constrs, bool check_type) {
    if (checked(PyObject_Size(coeffs.ptr())) != checked(PyObject_Size(constrs.ptr())))
        raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Array lengths don't match");
    Entries entries;
    for (py::handle constr : py::reinterpret_borrow<py::iterable>(constrs)) entries.constrs.push_back(borrow(constr));
    if (check_type)
        for (const py::object& constr : entries.constrs)
            if (!is_constr(constr))
                raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Second argument should be a list of Constr");
    for (py::handle coeff : py::reinterpret_borrow<py::iterable>(coeffs)) entries.coeffs.push_back(float_of(coeff));
    if (entries.coeffs.size() != entries.constrs.size())
        raise_zelvan(ZVN_ERROR_INVALID_ARGUMENT, "Array lengths don't match");
    return entries;
}

void append_all(Column& self, const Entries& entries) {
    self.coeffs.reserve(self.coeffs.size() + entries.coeffs.size());
    self.constrs.reserve(self.constrs.size() + entries.constrs.size());
    self.coeffs.insert(self.coeffs.end(), entries.coeffs.begin(), entries.coeffs.end());
    self.constrs.insert(self.constrs.end(), entries.constrs.begin(), entries.constrs.end());
}

void clear(Column& self) {
    std::vector<py::object> old;
    old.swap(self.constrs);
    self.coeffs.clear();
}

void Column_init(Column& self, PyObject* args, PyObject* kwargs) {
    static const Signature<2> kInit{"Column", 0, {Name("coeffs"), Name("constrs")}};
    const auto [first, second] = kInit.parse(args, kwargs);
    const py::handle coeffs = first ? first : Py_None, constrs = second ? second : Py_None;
    clear(self);
    if (coeffs.is_none() && constrs.is_none()) return;
    if (is_iterable(coeffs) && is_iterable(constrs)) return append_all(self, read_entries(coeffs, constrs, false));
    if (is_constr(constrs)) return append(self, float_of(coeffs), constrs);
    raise_invalid(steal(PyUnicode_FromFormat("No constructor available for Column(%S, %S)", Py_TYPE(coeffs.ptr()),
                                             Py_TYPE(constrs.ptr()))));
}

void Column_addTerms(Column& self, Args args) {
    static const Signature<2> kAddTerms{"addTerms", 2, {Name("coeffs"), Name("constrs")}};
    const auto [coeffs, constrs] = kAddTerms.parse(args);
    if (is_constr(constrs)) return append(self, float_of(coeffs), constrs);
    if (is_iterable(coeffs) && is_iterable(constrs)) return append_all(self, read_entries(coeffs, constrs, true));
    raise_invalid(steal(PyUnicode_FromFormat("Unsupported data type (%S) for constraint argument", Py_TYPE(constrs))));
}

PyObject* Column_size(Column& self) { return PyLong_FromSize_t(self.coeffs.size()); }

std::size_t position_of(Column& self, py::handle index) {
    const Py_ssize_t i = list_index(index);
    return list_position(i, self.coeffs.size());
}

PyObject* Column_getCoeff(Column& self, Args args) {
    static const Signature<1> kGetCoeff{"getCoeff", 1, {Name("i")}};
    const auto [i] = kGetCoeff.parse(args);
    return PyFloat_FromDouble(self.coeffs[position_of(self, i)]);
}

py::object Column_getConstr(Column& self, Args args) {
    static const Signature<1> kGetConstr{"getConstr", 1, {Name("i")}};
    const auto [i] = kGetConstr.parse(args);
    return self.constrs[position_of(self, i)];
}

// Keeps the entries for which `keep(position)` holds.
template <class Keep>
void filter(Column& self, Keep keep) {
    Entries kept;
    for (std::size_t i = 0; i < self.coeffs.size(); ++i) {
        if (!keep(i)) continue;
        kept.coeffs.push_back(self.coeffs[i]);
        kept.constrs.push_back(self.constrs[i]);
    }
    self.coeffs.swap(kept.coeffs);
    self.constrs.swap(kept.constrs);
}

void Column_remove(Column& self, Args args) {
    static const Signature<1> kRemove{"remove", 1, {Name("which")}};
    const auto [which] = kRemove.parse(args);
    if (is_constr(which)) {
        const PyObject* constr = which;
        filter(self, [&](std::size_t i) { return self.constrs[i].ptr() != constr; });
    } else if (PyLong_Check(which)) {
        const std::size_t position = position_of(self, which);
        filter(self, [&](std::size_t i) { return i != position; });
    }
}

void Column_clear(Column& self) { clear(self); }

py::object Column_copy(Column& self) { return new_column(self.coeffs, self.constrs); }

void Column_normalize(Column& self) { column_normalize(self); }

py::object Column_repr(Column& self) {
    std::vector<py::object> constrs = self.constrs;
    const std::vector<double> coeffs = self.coeffs;
    py::list pieces;
    pieces.append(py::str("<zelvan.Column: "));
    for (std::size_t i = 0; i < coeffs.size(); ++i) {
        pieces.append(py::str(py::float_(coeffs[i])));
        pieces.append(py::str(" "));
        pieces.append(constrs[i].attr("getAttr")("ConstrName"));
        pieces.append(py::str(" "));
    }
    pieces.append(py::str(">"));
    return py::str("").attr("join")(pieces);
}

py::object Column_coeffs(Column& self) {
    py::list coeffs;
    for (const double coeff : self.coeffs) coeffs.append(coeff);
    return coeffs;
}
py::object Column_constrs(Column& self) {
    py::list constrs;
    for (const py::object& constr : self.constrs) constrs.append(constr);
    return constrs;
}

py::object Column_reduce(Column& self) {
    return reduced(object_of(self), py::make_tuple(Column_coeffs(self), Column_constrs(self)));
}

void Column_dealloc(PyObject* object) {
    PyObject_GC_UnTrack(object);
    as_column(object).coeffs.~vector();
    as_column(object).constrs.~vector();
    free_instance(object, Column_Type);
}

int Column_traverse(PyObject* object, visitproc visit, void* arg) {
    for (const py::object& constr : as_column(object).constrs) Py_VISIT(constr.ptr());
    return visit_type(object, visit, arg);
}

int Column_tp_clear(PyObject* object) {
    clear(as_column(object));
    return 0;
}

PyGetSetDef properties[] = {
    {"_coeffs", getter_of<Column_coeffs>, nullptr, "The coefficients as a new list of float.", nullptr},
    {"_constrs", getter_of<Column_constrs>, nullptr, "The constraints as a new list, parallel to _coeffs.", nullptr},
    {},
};

PyMethodDef methods[] = {
    {"addTerms", method<Column_addTerms>, kKeywords,
     "addTerms($self, coeffs, constrs)\n--\n\n"
     "Append entries: a number and a Constr, or two sequences of equal length.\n\n"
     "Raises ZelvanError, and adds nothing, for different lengths and for an element of `constrs` that is no Constr."},
    {"size", method<Column_size>, METH_NOARGS, "size($self)\n--\n\nNumber of entries (int)."},
    {"getCoeff", method<Column_getCoeff>, kKeywords,
     "getCoeff($self, i)\n--\n\n"
     "Coefficient (float) of entry `i`; negative positions count from the end. Raises IndexError."},
    {"getConstr", method<Column_getConstr>, kKeywords,
     "getConstr($self, i)\n--\n\n"
     "Constr of entry `i`; negative positions count from the end. Raises IndexError."},
    {"remove", method<Column_remove>, kKeywords,
     "remove($self, which)\n--\n\n"
     "Drop the entry at position `which` (int, raises IndexError), or every entry of the row `which` (Constr)."},
    {"clear", method<Column_clear>, METH_NOARGS, "clear($self)\n--\n\nDrop all entries."},
    {"copy", method<Column_copy>, METH_NOARGS,
     "copy($self)\n--\n\nAn independent copy (Column) with the same handles."},
    {"_normalize", method<Column_normalize>, METH_NOARGS,
     "_normalize($self)\n--\n\nMerge entries of the same Constr into the first of them and drop zero coefficients."},
    {"__reduce__", method<Column_reduce>, METH_NOARGS, "__reduce__($self)\n--\n\nState for pickling."},
    {},
};

const char kDoc[] =
    "Column(coeffs=None, constrs=None)\n--\n\n"
    "Column of the constraint matrix, for Model.addVar: coefficients and the constraints they belong to.\n\n"
    "Column(c, constr) has one entry, Column(coeffs, constrs) those of two sequences. Raises ZelvanError for lengths\n"
    "that differ and for arguments of other types.";

}  // namespace

py::object new_column(std::vector<double> coeffs, std::vector<py::object> constrs) {
    py::object column = steal(Column_new(Column_Type, {}, {}));
    as_column(column).coeffs.swap(coeffs);
    as_column(column).constrs.swap(constrs);
    return column;
}

void column_normalize(Column& column) {
    std::unordered_map<PyObject*, std::size_t> first;
    for (std::size_t i = 0; i < column.coeffs.size(); ++i) {
        const auto [entry, is_new] = first.emplace(column.constrs[i].ptr(), i);
        if (is_new) continue;
        column.coeffs[entry->second] += column.coeffs[i];
        column.coeffs[i] = 0.0;
    }
    filter(column, [&](std::size_t i) { return column.coeffs[i] != 0.0; });
}

void init_column(py::module_& module) {
    PyType_Slot slots[] = {
        {Py_tp_doc, const_cast<char*>(kDoc)},
        {Py_tp_new, slot<Column_new>()},
        {Py_tp_init, slot<Column_init>()},
        {Py_tp_dealloc, reinterpret_cast<void*>(Column_dealloc)},
        {Py_tp_traverse, reinterpret_cast<void*>(Column_traverse)},
        {Py_tp_clear, reinterpret_cast<void*>(Column_tp_clear)},
        {Py_tp_repr, slot<Column_repr>()},
        {Py_tp_methods, methods},
        {Py_tp_getset, properties},
        {0, nullptr},
    };
    PyType_Spec spec{"zelvanpy.Column", sizeof(Column), 0,
                     Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC, slots};
    Column_Type = make_type(module, spec);
}

}  // namespace zelvanpy
