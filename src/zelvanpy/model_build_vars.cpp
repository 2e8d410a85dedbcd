// addVar and addVars.

#include <vector>

#include "exception.h"
#include "model.h"
#include "model_build.h"
#include "model_build_names.h"
#include "model_stranger.h"
#include "pyargs.h"
#include "pycontainer.h"
#include "pynumber.h"
#include "tupledict.h"

namespace zelvanpy {

namespace {

bool is_empty_string(py::handle value) {
    if (PyUnicode_Check(value.ptr())) return PyUnicode_GetLength(value.ptr()) == 0;
    return false;
}

const char* const kTypeLetter = "one character, such as ZVN.INTEGER ('I')";

// ---- addVar

// Constraint indices and coefficients of a column, which is normalised on the way.
void append_column(const Model& model, py::handle column, LibraryTerms& buffer) {
    column.attr("_normalize")();
    const Py_ssize_t size = column.attr("size")().cast<Py_ssize_t>();
    const py::object constrs = column.attr("_constrs"), coeffs = column.attr("_coeffs");
    for (Py_ssize_t i = 0; i < size; ++i) {
        const py::object constr = steal(PySequence_GetItem(constrs.ptr(), i));
        const int index = constr.attr("__cindex__")().cast<int>();
        if (index < 0 && find_handle_kind(constr.ptr()))
            refuse_stranger(model, *as_handle(constr), ZVN_ERROR_NOT_IN_MODEL, "Constraint not in model");
        if (index < 0) raise_zelvan(ZVN_ERROR_NOT_IN_MODEL, "Constraint not in model");
        buffer.add(index, as_double(steal(PySequence_GetItem(coeffs.ptr(), i))));
    }
}

const Signature<6> kAddVar{
    "addVar", 0, {Name("lb"), Name("ub"), Name("obj"), Name("vtype"), Name("name"), Name("column")}};

// ---- addVars

const Name kLb("lb"), kUb("ub"), kObj("obj"), kVtype("vtype"), kName("name");
const Name* const kKeywordNames[] = {&kLb, &kUb, &kObj, &kVtype, &kName};
constexpr std::size_t kNumKeywords = 5;

// The keyword arguments of one call, null where not given.
struct Keywords {
    PyObject* values[kNumKeywords] = {};

    PyObject* lb() const { return values[0]; }
    PyObject* ub() const { return values[1]; }
    PyObject* obj() const { return values[2]; }
    PyObject* vtype() const { return values[3]; }
    PyObject* name() const { return values[4]; }
};

Keywords read_keywords(const Args& args) {
    Keywords keywords;
    py::object unknown = steal(PyList_New(0));
    const Py_ssize_t count = args.keywords ? PyTuple_GET_SIZE(args.keywords) : 0;
    for (Py_ssize_t k = 0; k < count; ++k) {
        PyObject* keyword = PyTuple_GET_ITEM(args.keywords, k);
        std::size_t i = 0;
        while (i < kNumKeywords && !kKeywordNames[i]->is(keyword)) ++i;
        if (i < kNumKeywords)
            keywords.values[i] = args.values[args.count + k];
        else
            checked(PyList_Append(unknown.ptr(), keyword));
    }
    if (PyList_GET_SIZE(unknown.ptr()) > 0) {
        PyErr_Format(PyExc_TypeError, "addVars() got unexpected keyword argument(s) %S", unknown.ptr());
        throw PythonError{};
    }
    return keywords;
}

// An index argument as list: an exact int n stands for range(n).
py::object index_list(py::handle index) {
    if (!PyLong_CheckExact(index.ptr())) return steal(PySequence_List(index.ptr()));
    const py::object range =
        steal(PyObject_CallFunctionObjArgs(reinterpret_cast<PyObject*>(&PyRange_Type), index.ptr(), nullptr));
    return steal(PySequence_List(range.ptr()));
}

// One key of the cross product; elements that are exactly tuples are spliced in.
py::object product_key(const std::vector<PyObject*>& parts) {
    Py_ssize_t length = 0;
    for (PyObject* part : parts) length += PyTuple_CheckExact(part) ? PyTuple_GET_SIZE(part) : 1;
    py::object key = steal(PyTuple_New(length));
    Py_ssize_t next = 0;
    const auto put = [&](PyObject* element) {
        Py_INCREF(element);
        PyTuple_SET_ITEM(key.ptr(), next++, element);
    };
    for (PyObject* part : parts) {
        if (!PyTuple_CheckExact(part)) {
            put(part);
            continue;
        }
        for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(part); ++i) put(PyTuple_GET_ITEM(part, i));
    }
    return key;
}

// The cross product of lists, the first varying slowest.
py::object product(const std::vector<py::object>& lists) {
    std::size_t total = 1;
    bool overflow = false;
    for (const py::object& list : lists) {
        const std::size_t size = PyList_GET_SIZE(list.ptr());
        if (size == 0) return steal(PyList_New(0));
        overflow = overflow || total > static_cast<std::size_t>(ZVN_MAXINT) / size;
        total = overflow ? total : total * size;
    }
    if (overflow) raise_zelvan(ZVN_ERROR_OUT_OF_MEMORY, "Out of memory for variable namespace");
    py::object keys = steal(PyList_New(total));
    std::vector<Py_ssize_t> at(lists.size(), 0);
    std::vector<PyObject*> parts(lists.size());
    for (std::size_t k = 0; k < total; ++k) {
        for (std::size_t d = 0; d < lists.size(); ++d) parts[d] = PyList_GET_ITEM(lists[d].ptr(), at[d]);
        PyList_SET_ITEM(keys.ptr(), k, product_key(parts).release().ptr());
        for (std::size_t d = lists.size(); d-- > 0;) {
            if (++at[d] < PyList_GET_SIZE(lists[d].ptr())) break;
            at[d] = 0;
        }
    }
    return keys;
}

py::object index_set(const Args& args) {
    if (args.count == 0) raise(PyExc_IndexError, "addVars() needs at least one index set");
    if (args.count == 1) return index_list(args.values[0]);
    std::vector<py::object> lists;
    for (Py_ssize_t i = 0; i < args.count; ++i) lists.push_back(index_list(args.values[i]));
    return product(lists);
}

// list += elements; false for elements that can't be iterated.
bool extend(py::handle list, PyObject* elements) {
    if (PyFloat_CheckExact(elements) || PyLong_CheckExact(elements)) return false;
    const Py_ssize_t end = PyList_GET_SIZE(list.ptr());
    if (PyList_SetSlice(list.ptr(), end, end, elements) == 0) return true;
    if (!PyErr_ExceptionMatches(PyExc_TypeError)) throw PythonError{};
    PyErr_Clear();
    return false;
}

// By identity: arrays that are compared answer with an array.
bool same_elements(const py::object& a, const py::object& b) {
    const Py_ssize_t size = PyList_GET_SIZE(a.ptr());
    if (size != PyList_GET_SIZE(b.ptr())) return false;
    for (Py_ssize_t i = 0; i < size; ++i)
        if (PyList_GET_ITEM(a.ptr(), i) != PyList_GET_ITEM(b.ptr(), i)) return false;
    return true;
}

// Nested sequences, flattened while all elements of a level can be iterated and none is a str.
py::object flatten(py::object list) {
    for (int level = Py_GetRecursionLimit(); level > 0; --level) {
        for (Py_ssize_t i = 0; i < PyList_GET_SIZE(list.ptr()); ++i)
            if (PyUnicode_Check(PyList_GET_ITEM(list.ptr(), i))) return list;
        py::object flat = steal(PyList_New(0));
        for (Py_ssize_t i = 0; i < PyList_GET_SIZE(list.ptr()); ++i)
            if (!extend(flat, PyList_GET_ITEM(list.ptr(), i))) return list;
        if (same_elements(flat, list)) return list;
        list = std::move(flat);
    }
    raise(PyExc_RecursionError, "addVars(): an argument is nested without end");
}

// list(value); an array in row order, as the rows of a matrix are matrices again.
py::object list_of(PyObject* value) {
    static const Name kFlat("flat");
    if (!PyList_CheckExact(value) && !PyTuple_CheckExact(value)) {
        const py::object elements = find_attribute(value, kFlat);
        if (elements && PyObject_Size(value) >= 0) return steal(PySequence_List(elements.ptr()));
        PyErr_Clear();  // no length: no dimension
    }
    return steal(PySequence_List(value));
}

// Whether a dict answers get() as dict does.
bool is_plain_dict(PyObject* dict) {
    static const Name kGet("get");
    return PyDict_CheckExact(dict) || (is_tupledict(dict) && !overrides(dict, TupleDict_Type, kGet));
}

// The numbers of a plain dict by key.
std::vector<double> numbers_by_key(const char* keyword, PyObject* dict, double deflt, PyObject* keys) {
    std::vector<double> result(PyList_GET_SIZE(keys), deflt);
    DictCursor cursor(dict);
    for (std::size_t i = 0; i < result.size(); ++i) {
        PyObject* key = PyList_GET_ITEM(keys, i);
        PyObject* found = cursor.find(key);
        if (found)
            result[i] = PyFloat_CheckExact(found) ? PyFloat_AS_DOUBLE(found)
                                                  : number_argument(borrow(found), {"addVars", keyword, key});
    }
    return result;
}

// The value of a keyword for each key, as a list, from a dict, a list-like or one value.
py::object listify(PyObject* value, PyObject* deflt, PyObject* keys) {
    const Py_ssize_t count = PyList_GET_SIZE(keys);
    const bool single = PyUnicode_Check(value) || PyFloat_CheckExact(value) || PyLong_CheckExact(value);
    if (!single && PyDict_Check(value)) {
        py::object values = steal(PyList_New(count));
        const bool exact = is_plain_dict(value);
        for (Py_ssize_t i = 0; i < count; ++i) {
            PyObject* key = PyList_GET_ITEM(keys, i);
            PyObject* found;
            if (exact) {
                found = PyDict_GetItemWithError(value, key);
                if (!found && PyErr_Occurred()) throw PythonError{};
                if (!found) found = deflt;
                Py_INCREF(found);
            } else {
                found = steal(PyObject_CallMethod(value, "get", "OO", key, deflt)).release().ptr();
            }
            PyList_SET_ITEM(values.ptr(), i, found);
        }
        return values;
    }
    if (!single && is_iterable(value)) return flatten(list_of(value));
    py::object values = steal(PyList_New(count));
    for (Py_ssize_t i = 0; i < count; ++i) {
        Py_INCREF(value);
        PyList_SET_ITEM(values.ptr(), i, value);
    }
    return values;
}

void assert_length(const py::object& values, Py_ssize_t count) {
    if (PyList_GET_SIZE(values.ptr()) == count) return;
    const py::handle flags = PySys_GetObject("flags");
    if (flags && flags.attr("optimize").cast<int>() > 0) return;
    PyErr_SetNone(PyExc_AssertionError);
    throw PythonError{};
}

PyObject* entry(const py::object& values, Py_ssize_t i) {
    if (i >= PyList_GET_SIZE(values.ptr())) raise(PyExc_IndexError, "list index out of range");
    return PyList_GET_ITEM(values.ptr(), i);
}

// The numbers of a keyword, one for each key; none where the keyword isn't given.
std::vector<double> numbers(const char* keyword, PyObject* value, double deflt, PyObject* keys) {
    if (!value) return {};
    const Py_ssize_t count = PyList_GET_SIZE(keys);
    if (PyFloat_Check(value)) return std::vector<double>(count, PyFloat_AS_DOUBLE(value));
    if (PyLong_CheckExact(value)) return std::vector<double>(count, number_argument(value, {"addVars", keyword}));
    if (PyDict_Check(value) && is_plain_dict(value)) return numbers_by_key(keyword, value, deflt, keys);
    const py::object fallback = steal(PyFloat_FromDouble(deflt));
    const py::object values = listify(value, fallback.ptr(), keys);
    assert_length(values, count);
    std::vector<double> result(count);
    for (Py_ssize_t i = 0; i < count; ++i) {
        const py::object element = borrow(entry(values, i));
        result[i] = number_argument(element, {"addVars", keyword, PyList_GET_ITEM(keys, i)});
    }
    return result;
}

char type_letter(py::handle text, PyObject* key) {
    if (!PyUnicode_Check(text.ptr()) || PyUnicode_GetLength(text.ptr()) != 1)
        refuse_argument(PyExc_ValueError, {"addVars", "vtype", key}, kTypeLetter, text);
    return first_char(text);
}

std::vector<char> types(PyObject* value, PyObject* keys) {
    if (!value) return {};
    const Py_ssize_t count = PyList_GET_SIZE(keys);
    if (PyUnicode_Check(value)) return std::vector<char>(count, type_letter(value, nullptr));
    const py::object fallback = steal(PyUnicode_FromString("C"));
    const py::object values = listify(value, fallback.ptr(), keys);
    assert_length(values, count);
    std::vector<char> result(count);
    for (Py_ssize_t i = 0; i < count; ++i) {
        const py::object element = borrow(entry(values, i));
        result[i] = type_letter(element, PyList_GET_ITEM(keys, i));
    }
    return result;
}

// An array for the library, which takes null for its default.
template <class T>
const T* data_or_null(const std::vector<T>& values) {
    return values.empty() ? nullptr : values.data();
}

void collect_names(PyObject* name, PyObject* keys, NameBuffer& names) {
    if (!name || name == Py_None || is_empty_string(name)) return;
    if (PyUnicode_Check(name)) return names.add_indexed(name, keys);
    const py::object fallback = steal(PyUnicode_FromString(""));
    const py::object values = listify(name, fallback.ptr(), keys);
    const Py_ssize_t count = PyList_GET_SIZE(keys);
    assert_length(values, count);
    PyObject* first = entry(values, 0);
    if (checked(PyObject_IsTrue(first)) &&
        checked(PyObject_RichCompareBool(first, entry(values, PyList_GET_SIZE(values.ptr()) - 1), Py_EQ)))
        return names.add_indexed(borrow(first), keys);
    for (Py_ssize_t i = 0; i < count; ++i) names.add(borrow(entry(values, i)));
}

py::object Model_addVar(Model& self, Args args) {
    const auto [lb, ub, obj, vtype, name, column] = kAddVar.parse(args);
    model_setup(self);
    LibraryTerms entries;  // not the shared one: reading a column runs Python code
    if (column && column != Py_None) append_column(self, column, entries);
    const char type = vtype ? letter_argument(vtype, {"addVar", "vtype"}, kTypeLetter) : ZVN_CONTINUOUS;
    const double lower = lb ? number_argument(lb, {"addVar", "lb"}) : 0.0;
    const double upper = ub ? number_argument(ub, {"addVar", "ub"}) : ZVN_INFINITY;
    const double cost = obj ? number_argument(obj, {"addVar", "obj"}) : 0.0;
    py::object var = new_member(self, Var_Type);
    const auto add = [&](const char* text) {
        return add_object(self, Kind::kVar, var, [&](ZVNmodel* model) {
            return ZVNaddvar(model, entries.size(), entries.ind(), entries.val(), cost, lower, upper, type, text);
        });
    };
    return !name || is_empty_string(name) ? add(nullptr) : add(CString(name));
}

py::object Model_addVars(Model& self, Args args) {
    require_open(self);
    const Keywords keywords = read_keywords(args);
    const py::object keys = index_set(args);
    const Py_ssize_t count = PyList_GET_SIZE(keys.ptr());
    if (count == 0) return new_tupledict();
    if (count > ZVN_MAXINT) raise_zelvan(ZVN_ERROR_OUT_OF_MEMORY, "Out of memory for variable namespace");
    model_setup(self);
    NameBuffer names;
    collect_names(keywords.name(), keys.ptr(), names);
    const std::vector<double> lb = numbers("lb", keywords.lb(), 0.0, keys.ptr());
    const std::vector<double> ub = numbers("ub", keywords.ub(), ZVN_INFINITY, keys.ptr());
    const std::vector<double> obj = numbers("obj", keywords.obj(), 0.0, keys.ptr());
    const std::vector<char> vtype = types(keywords.vtype(), keys.ptr());

    // The handles and their dict come first: an unhashable key must not leave variables without handles.
    require_lists(self);  // reading values and keys runs code of the caller
    const Py_ssize_t first = PyList_GET_SIZE(self.vars);
    const py::object vars = new_handles(self, Kind::kVar, count);
    py::object result = new_tupledict(keys, vars);
    require_member(self, PyList_GET_ITEM(vars.ptr(), 0));
    if (PyList_GET_SIZE(self.vars) != first)
        raise(PyExc_RuntimeError, "Model.addVars(): the model got variables while keys were hashed");

    check(ZVNaddvars(model_pointer(self), static_cast<int>(count), 0, nullptr, nullptr, nullptr, data_or_null(obj),
                     data_or_null(lb), data_or_null(ub), data_or_null(vtype), names.pointers()),
          as_object(self));
    list_handles(self, Kind::kVar, vars);
    if (PyDict_Size(result.ptr()) != count) raise(PyExc_KeyError, "Duplicate keys in Model.addVars()");
    tupledict_setord(as_tupledict(result), keys);
    return result;
}

}  // namespace

PyMethodDef model_build_var_methods[] = {
    {"addVar", method<Model_addVar>, kKeywords,
     "addVar($self, lb=0.0, ub=1e100, obj=0.0, vtype='C', name='', column=None)\n--\n\n"
     "Add one variable and return its Var.\n\n"
     "lb, ub: bounds; magnitudes of 1e20 and above are infinite. obj: objective coefficient. vtype: one of\n"
     "ZVN.CONTINUOUS, BINARY, INTEGER, SEMICONT, SEMIINT. name: at most 255 bytes; '' gives a default name.\n"
     "column: a Column with the coefficients of the variable in existing constraints; it is normalised.\n"
     "The variable is part of the model from the next update() on. Raises ZelvanError when the library refuses\n"
     "a value, and with ZVN.ERROR_NOT_IN_MODEL for a constraint without index."},
    {"addVars", method<Model_addVars>, kKeywords,
     "addVars($self, *indexes, lb=0.0, ub=1e100, obj=0.0, vtype='C', name='')\n--\n\n"
     "Add one variable for each key of an index set and return a tupledict from key to Var.\n\n"
     "indexes: each an int n (for range(n)) or an iterable; several make their cross product, with tuple keys.\n"
     "lb, ub, obj, vtype, name: one value for all, a dict by key, or a list (nested lists and arrays are\n"
     "flattened in row order). A single name is completed by the key: 'x[1,2]'.\n"
     "Raises KeyError for duplicate keys (the variables stay in the model), TypeError for unknown keywords.\n\n"
     "    x = m.addVars(3, 4, vtype=ZVN.BINARY, name='x')\n"
     "    m.addConstrs(x.sum(i, '*') == 1 for i in range(3))"},
    {},
};

}  // namespace zelvanpy
