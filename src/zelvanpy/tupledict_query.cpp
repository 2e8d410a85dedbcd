// What a tupledict answers about the keys that match a pattern: values, pairs, subsets, sums and products.

#include <cmath>

#include "linexpr.h"
#include "pattern.h"
#include "pycontainer.h"
#include "quicksum.h"
#include "tupledict.h"
#include "tuplelist.h"

namespace zelvanpy {

namespace {

const Name kKeys("keys");
const Name kItems("items");
const Name kIterItems("iteritems");
const Name kIterValues("itervalues");
const Name kGetItem("__getitem__");
const Name kContains("__contains__");

constexpr std::size_t kAhead = 12;  // members whose values are fetched into the cache before their turn

// `visit` gets borrowed references to each key and value and holds what it needs before it runs Python code.

template <class Visit>
void visit_value(TupleDict& t, PyObject* key, PyObject* value, Visit& visit) {
    if (value) return visit(key, value);
    const py::object held_key = borrow(key);
    const py::object held_value = steal(PyObject_GetItem(t.self().ptr(), key));
    visit(held_key.ptr(), held_value.ptr());
}

template <class Visit>
void visit_list(TupleDict& t, py::handle list, Visit& visit) {
    DictCursor cursor(t.self());
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(list.ptr()); ++i) {
        PyObject* key = PyList_GET_ITEM(list.ptr(), i);
        visit_value(t, key, cursor.find_next(key), visit);
    }
}

// Looks up the values of all members at once: in the order of the dict, that needs no hashing. Each group gets them
// side by side, as its members may lie far apart.
void load_values(TupleDict& t, KeyIndex& index) {
    const std::uint64_t version = version_of(t.dict);
    if (index.values.version == version) return;
    std::vector<PyObject*> by_member, by_group;
    by_member.reserve(index.members().size());
    DictCursor cursor(t.self());
    for (const py::object& member : index.members()) by_member.push_back(cursor.find(member.ptr()));
    by_group.reserve(index.order().size());
    for (const std::uint32_t position : index.order()) by_group.push_back(by_member[position]);
    index.values = {std::move(by_group), version};
}

template <class Visit>
void visit_group(TupleDict& t, KeyIndex& index, std::uint32_t group, Visit& visit) {
    if (!index.is_intact(group)) return visit_list(t, group_list(index, group), visit);
    load_values(t, index);
    const std::size_t begin = index.begin(group) - index.order().data();
    const std::size_t end = index.end(group) - index.order().data();
    for (std::size_t i = begin; i < end; ++i) {
        if (end - i > kAhead) __builtin_prefetch(index.values.list[i + kAhead], 1);
        if (index.values.version == version_of(t.dict) && index.values.list[i])
            visit(index.members()[index.order()[i]].ptr(), index.values.list[i]);
        else
            visit_value(t, index.members()[index.order()[i]].ptr(), nullptr, visit);
    }
}

// Keys and values through the methods that a subclass may have replaced.
template <class Visit>
void visit_iteritems(TupleDict& t, const Args& args, Visit& visit) {
    const py::object method = steal(PyObject_GetAttr(t.self().ptr(), kIterItems.get()));
    const py::tuple vals(args.count);
    for (Py_ssize_t i = 0; i < args.count; ++i) vals[i] = py::handle(args.values[i]);
    const py::object pairs = steal(PyObject_CallObject(method.ptr(), vals.ptr()));
    for (const py::handle pair : py::iter(pairs)) {
        const py::object fields = steal(PySequence_Tuple(pair.ptr()));
        if (PyTuple_GET_SIZE(fields.ptr()) != 2) throw py::value_error("iteritems() must give pairs of key and value");
        visit(PyTuple_GET_ITEM(fields.ptr(), 0), PyTuple_GET_ITEM(fields.ptr(), 1));
    }
    if (PyErr_Occurred()) throw PythonError{};
}

// Calls visit(key, value) for each match; visit.expect(n) tells before how many they are, where that is known.
template <class Visit>
void visit_matches(TupleDict& t, const Args& args, Visit&& visit) {
    if (!is_plain(t)) return visit_iteritems(t, args, visit);
    const py::object keys = tupledict_keys(t);
    const Selection selection = select(as_tuplelist(keys), args.values, static_cast<std::size_t>(args.count));
    if constexpr (requires { visit.expect(std::size_t{}); }) visit.expect(selection.size());
    for (const Selection::Part& part : selection.parts)
        if (part.list)
            visit_list(t, part.list, visit);
        else
            visit_group(t, *part.index, part.group, visit);
}

// A list of mostly known size under construction; the collector doesn't see it before it is complete.
class NewList {
public:
    NewList() { expect(0); }
    void expect(std::size_t size) {
        list_ = steal(PyList_New(static_cast<Py_ssize_t>(size)));
        PyObject_GC_UnTrack(list_.ptr());
    }
    void add(py::object element) {
        if (next_ < PyList_GET_SIZE(list_.ptr()))
            PyList_SET_ITEM(list_.ptr(), next_, element.release().ptr());
        else
            checked(PyList_Append(list_.ptr(), element.ptr()));
        ++next_;
    }
    py::object result() && {
        checked(PyList_SetSlice(list_.ptr(), next_, PyList_GET_SIZE(list_.ptr()), nullptr));
        PyObject_GC_Track(list_.ptr());
        return std::move(list_);
    }

private:
    py::object list_;
    Py_ssize_t next_ = 0;
};

struct ValueList : NewList {
    void operator()(PyObject*, PyObject* value) { add(borrow(value)); }
};

struct PairList : NewList {
    void operator()(PyObject* key, PyObject* value) {
        py::object held_key = borrow(key), held_value = borrow(value);
        py::object pair = steal(PyTuple_New(2));
        PyTuple_SET_ITEM(pair.ptr(), 0, held_key.release().ptr());
        PyTuple_SET_ITEM(pair.ptr(), 1, held_value.release().ptr());
        add(std::move(pair));
    }
};

// `key in dict` and `dict[key]` in one, for any dict.
class Lookup {
public:
    explicit Lookup(py::handle dict)
        : dict_(dict),
          plain_(!overrides(dict, &PyDict_Type, kGetItem) && !overrides(dict, &PyDict_Type, kContains)),
          cursor_(dict) {}

    // The value of a key that comes next, borrowed; null tells nothing. Runs no Python code.
    PyObject* find_next(PyObject* key) { return plain_ ? cursor_.find_next(key) : nullptr; }
    // Null where the dict doesn't have the key.
    py::object find(PyObject* key) {
        if (plain_) {
            PyObject* value = cursor_.find(key);
            return value ? borrow(value) : py::object();
        }
        if (!checked(PySequence_Contains(dict_.ptr(), key))) return {};
        return steal(PyObject_GetItem(dict_.ptr(), key));
    }

private:
    py::handle dict_;
    bool plain_;
    DictCursor cursor_;
};

// A running sum by the rules of quicksum: variables and floats directly, everything else by `+=`.
class Sum {
public:
    void expect(std::size_t terms) { expected_ = terms; }

    void operator()(PyObject*, PyObject* term) {
        if (native_ && Py_TYPE(term) == Var_Type) return append(1.0, term);
        if (native_ && PyFloat_CheckExact(term) && add_constant(PyFloat_AS_DOUBLE(term))) return;
        add_any(borrow(term));
    }

    // Adds coeff * value. Products of floats and variables make no expression of their own.
    void add_product(PyObject* coeff, PyObject* value) {
        if (!add_simple_product(coeff, value)) add_any(steal(PyNumber_Multiply(coeff, value)));
    }
    // The same for factors that run no Python code; false, with nothing added, for others.
    bool add_simple_product(PyObject* coeff, PyObject* value) {
        double c;
        if (!native_ || !read_coeff(coeff, c)) return false;
        if (Py_TYPE(value) != Var_Type) return PyFloat_CheckExact(value) && add_constant(c * PyFloat_AS_DOUBLE(value));
        append(c, value);
        return true;
    }

    py::object result() && {
        if (native_) shrink_terms(native_);
        return std::move(result_);
    }

private:
    void append(double coeff, PyObject* var) {
        if (native_->size == 0) reserve_terms(native_, expected_);
        if (native_->size == native_->capacity) grow_terms(native_);
        append_term(native_, {coeff, as_handle(var)});
    }
    static bool read_coeff(PyObject* coeff, double& c) {
        if (PyFloat_CheckExact(coeff)) {
            c = PyFloat_AS_DOUBLE(coeff);
            return true;
        }
        if (!PyLong_CheckExact(coeff)) return false;
        c = PyFloat_AsDouble(coeff);
        if (c != -1.0 || !PyErr_Occurred()) return true;
        PyErr_Clear();  // an int too large: its product tells
        return false;
    }
    bool add_constant(double constant) {
        if (std::isnan(constant)) return false;
        native_->constant += constant;
        return true;
    }
    void add_any(const py::object& term) {
        result_ = accumulate(std::move(result_), term);
        native_ = Py_TYPE(result_.ptr()) == LinExpr_Type ? as_linexpr(result_) : nullptr;
    }

    LinExpr* native_ = new_linexpr();  // the result while it is a LinExpr
    py::object result_ = steal(reinterpret_cast<PyObject*>(native_));
    std::size_t expected_ = 0;
};

// Calls `visit` for each item of a dict as `for key, value in d.items()` does.
template <class Visit>
void visit_dict(py::handle d, Visit&& visit) {
    if (!PyDict_CheckExact(d.ptr())) {
        const py::object items = steal(PyObject_CallMethodObjArgs(d.ptr(), kItems.get(), nullptr));
        for (const py::handle item : py::iter(items)) {
            const py::object pair = steal(PySequence_Tuple(item.ptr()));
            if (PyTuple_GET_SIZE(pair.ptr()) != 2) throw py::value_error("items() must give pairs of key and value");
            visit(PyTuple_GET_ITEM(pair.ptr(), 0), PyTuple_GET_ITEM(pair.ptr(), 1));
        }
        if (PyErr_Occurred()) throw PythonError{};
        return;
    }
    const Py_ssize_t size = PyDict_Size(d.ptr());
    PyObject *key, *value;
    Py_ssize_t position = 0;
    while (PyDict_Next(d.ptr(), &position, &key, &value)) {
        const py::object held_key = borrow(key), held_value = borrow(value);
        visit(key, value);
        if (PyDict_Size(d.ptr()) != size) raise(PyExc_RuntimeError, "dictionary changed size during iteration");
    }
}

// Adds coeffs[key] * value for the keys that have a coefficient.
struct MatchProduct {
    Sum& sum;
    Lookup coeffs;

    void expect(std::size_t terms) { sum.expect(terms); }

    void operator()(PyObject* key, PyObject* value) {
        PyObject* next = coeffs.find_next(key);
        if (next && sum.add_simple_product(next, value)) return;
        const py::object held_key = borrow(key), held_value = borrow(value);
        if (const py::object coeff = coeffs.find(key)) sum.add_product(coeff.ptr(), value);
    }
};

py::object prod_dict(TupleDict& t, py::handle d, const Args& vals) {
    Sum sum;
    if (vals.count == 0 && checked(PyObject_Size(d.ptr())) < checked(PyObject_Size(t.self().ptr()))) {
        Lookup values(t.self());
        visit_dict(d, [&](PyObject* key, PyObject* coeff) {
            if (const py::object value = values.find(key)) sum.add_product(coeff, value.ptr());
        });
    } else {
        visit_matches(t, vals, MatchProduct{sum, Lookup(d)});
    }
    return std::move(sum).result();
}

py::object prod_list(TupleDict& t, py::handle d) {
    Sum sum;
    Lookup values(t.self());
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(d.ptr()); ++i) {
        const py::object coeff = borrow(PyList_GET_ITEM(d.ptr(), i));
        if (const py::object value = values.find(py::int_(i).ptr())) sum.add_product(coeff.ptr(), value.ptr());
    }
    return std::move(sum).result();
}

Args without_first(const Args& args) { return {args.values + 1, args.count - 1, nullptr}; }

}  // namespace

bool is_plain(TupleDict& t) {
    if (Py_TYPE(t.self().ptr()) == TupleDict_Type) return true;
    for (const Name* name : {&kKeys, &kIterItems, &kIterValues, &kGetItem, &kContains})
        if (overrides(t.self(), TupleDict_Type, *name)) return false;
    return true;
}

py::object tupledict_values(TupleDict& t) {
    if (!is_plain(t)) {
        const py::object values = steal(PyObject_CallMethodObjArgs(t.self().ptr(), kIterValues.get(), nullptr));
        return steal(PySequence_List(values.ptr()));
    }
    return tupledict_select(t, Args{nullptr, 0, nullptr});
}

py::object tupledict_items(TupleDict& t) {
    PairList pairs;
    visit_matches(t, Args{nullptr, 0, nullptr}, pairs);
    return std::move(pairs).result();
}

py::object tupledict_select(TupleDict& t, Args args) {
    refuse_keywords("select", args);
    ValueList values;
    visit_matches(t, args, values);
    return std::move(values).result();
}

py::object tupledict_subset(TupleDict& t, Args args) {
    refuse_keywords("subset", args);
    py::object result = new_tupledict();
    py::object keys = steal(PyList_New(0));
    visit_matches(t, args, [&](PyObject* key, PyObject* value) {
        const py::object held_key = borrow(key), held_value = borrow(value);
        checked(PyList_Append(keys.ptr(), key));
        checked(PyDict_SetItem(result.ptr(), key, value));
    });
    tupledict_setord(as_tupledict(result), keys);
    Py_XINCREF(t.wild);
    Py_XSETREF(as_tupledict(result).wild, t.wild);
    return result;
}

py::object tupledict_sum(TupleDict& t, Args args) {
    refuse_keywords("sum", args);
    Sum sum;
    visit_matches(t, args, sum);
    return std::move(sum).result();
}

py::object tupledict_prod(TupleDict& t, Args args) {
    static const Name kCoeffs("d");
    const Py_ssize_t num_keywords = args.keywords ? PyTuple_GET_SIZE(args.keywords) : 0;
    const bool by_keyword = args.count == 0 && num_keywords == 1 && kCoeffs.is(PyTuple_GET_ITEM(args.keywords, 0));
    if (!by_keyword) refuse_keywords("prod", args);
    if (args.count == 0 && !by_keyword) throw py::type_error("prod() missing required argument 'd' (pos 1)");
    const py::handle d = args.values[0];
    const Args vals = by_keyword ? Args{nullptr, 0, nullptr} : without_first(args);
    if (PyDict_Check(d.ptr())) return prod_dict(t, d, vals);
    if (!PyList_Check(d.ptr()) || vals.count) raise(PyExc_TypeError, "tupledict.prod requires a dictionary");
    try {
        return prod_list(t, d);
    } catch (...) {
        translate_exception();
        py::raise_from(PyExc_TypeError, "Invalid tupledict.prod argument");
        throw PythonError{};
    }
}

}  // namespace zelvanpy
