#include "tupledict.h"

#include <algorithm>
#include <vector>

#include "pyargs.h"
#include "tuplelist.h"

namespace zelvanpy {

PyTypeObject* TupleDict_Type = nullptr;

namespace {

const Name kStar("*");
const Name kClean("clean");

Py_ssize_t size_of(TupleDict& t) { return PyDict_Size(t.self().ptr()); }

// Positions: the number of each key that was ever set, by which the key list is sorted

// Gives the ranks that stand for positions so far their numbers.
py::object positions_of(TupleDict& t) {
    if (t.positions) return borrow(t.positions);
    const py::object keys = steal(PyDict_Keys(t.self().ptr()));
    py::object positions = steal(PyDict_New());
    const Py_ssize_t ordered = std::min(t.ordered, PyList_GET_SIZE(keys.ptr()));
    for (Py_ssize_t i = 0; i < ordered; ++i)
        checked(PyDict_SetItem(positions.ptr(), PyList_GET_ITEM(keys.ptr(), i), py::int_(i).ptr()));
    Py_XSETREF(t.positions, borrow(positions).release().ptr());
    return positions;
}

// A key that leaves the dict keeps its number.
void keep_positions(TupleDict& t) {
    if (t.ordered) positions_of(t);
}

void set_position(TupleDict& t, py::handle key, Py_ssize_t size_before) {
    const bool is_new = size_of(t) != size_before;
    if (!t.positions && is_new && t.ordered == size_before) {
        ++t.ordered;
        return;
    }
    const py::object positions = positions_of(t);
    checked(PyDict_SetItem(positions.ptr(), key.ptr(), py::int_(PyDict_Size(positions.ptr())).ptr()));
}

// Whether `ord` is the start of the dict's own order, its very keys.
bool is_rank_order(TupleDict& t, py::handle ord, Py_ssize_t num) {
    if (!PyList_Check(ord.ptr()) && !PyTuple_Check(ord.ptr())) return false;
    if (num > PySequence_Fast_GET_SIZE(ord.ptr())) return false;  // a subclass may give another length
    PyObject *key, *value;
    Py_ssize_t position = 0;
    for (Py_ssize_t i = 0; i < num; ++i)
        if (!PyDict_Next(t.self().ptr(), &position, &key, &value) || key != PySequence_Fast_GET_ITEM(ord.ptr(), i))
            return false;
    return true;
}

// Sorts the keys by number, those without one last; a list that nobody else holds.
void sort_keys(PyObject* keys, PyObject* positions) {
    struct Numbered {
        Py_ssize_t number;
        PyObject* key;
    };
    std::vector<Numbered> numbered;
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(keys); ++i) {
        PyObject* key = PyList_GET_ITEM(keys, i);
        PyObject* number = PyDict_GetItemWithError(positions, key);
        if (!number && PyErr_Occurred()) throw PythonError{};
        numbered.push_back({number ? PyLong_AsSsize_t(number) : PyDict_Size(positions), key});
    }
    const auto is_before = [](const Numbered& a, const Numbered& b) { return a.number < b.number; };
    if (std::is_sorted(numbered.begin(), numbered.end(), is_before)) return;
    std::stable_sort(numbered.begin(), numbered.end(), is_before);
    for (std::size_t i = 0; i < numbered.size(); ++i) PyList_SET_ITEM(keys, i, numbered[i].key);
}

void clean(TupleDict& t) {
    if (overrides(t.self(), TupleDict_Type, kClean))
        steal(PyObject_CallMethodObjArgs(t.self().ptr(), kClean.get(), nullptr));
    else
        Py_CLEAR(t.keys);
}

// Construction and life

void TupleDict_init(TupleDict& t, PyObject* args, PyObject* kwargs) {
    checked(PyDict_Type.tp_init(t.self().ptr(), args, kwargs));
    Py_CLEAR(t.wild);
    Py_CLEAR(t.positions);
    t.ordered = 0;
    clean(t);
}

void clear_own(TupleDict& t) {
    Py_CLEAR(t.wild);
    Py_CLEAR(t.keys);
    Py_CLEAR(t.positions);
    Py_CLEAR(t.attributes);
}

void TupleDict_dealloc(PyObject* object) {
    TupleDict& t = as_tupledict(object);
    dealloc_container(object, TupleDict_Type, &PyDict_Type, TupleDict_dealloc, [&t] {
        if (t.weakrefs) PyObject_ClearWeakRefs(t.self().ptr());
        clear_own(t);
    });
}

int TupleDict_traverse(PyObject* object, visitproc visit, void* arg) {
    const TupleDict& t = as_tupledict(object);
    Py_VISIT(t.wild);
    Py_VISIT(t.keys);
    Py_VISIT(t.positions);
    Py_VISIT(t.attributes);
    if (const int stop = PyDict_Type.tp_traverse(object, visit, arg)) return stop;
    return visit_type(object, visit, arg);
}

int TupleDict_tp_clear(PyObject* object) {
    clear_own(as_tupledict(object));
    return PyDict_Type.tp_clear(object);
}

py::object get_wild(TupleDict& t) { return borrow(t.wild ? t.wild : kStar.get()); }

void set_wild(TupleDict& t, py::handle wild, void*) {
    if (!wild) throw py::type_error("tupledict: 'wild' can't be deleted");
    Py_INCREF(wild.ptr());
    Py_XSETREF(t.wild, wild.ptr());
}

py::object TupleDict_getstate(TupleDict& t) {
    return py::make_tuple(get_wild(t), t.attributes ? borrow(t.attributes) : none());
}

void TupleDict_setstate(TupleDict& t, py::handle state) { restore_state(t.self(), state, t.wild); }

// Changes. Each drops the key list; only an assignment gives a position.

void TupleDict_ass_subscript(TupleDict& t, py::handle key, PyObject* value) {
    if (value) return tupledict_set(t, key, value);
    if (checked(PyDict_Contains(t.self().ptr(), key.ptr()))) keep_positions(t);
    checked(PyDict_DelItem(t.self().ptr(), key.ptr()));
    clean(t);
}

void TupleDict_clear(TupleDict& t) {
    keep_positions(t);
    PyDict_Clear(t.self().ptr());
    clean(t);
}

// dict's method of this name.
py::object call_dict(TupleDict& t, const char* name, const Args& args) {
    refuse_keywords(name, args);
    const py::object method = py::handle(reinterpret_cast<PyObject*>(&PyDict_Type)).attr(name);
    const py::tuple arguments(args.count + 1);
    arguments[0] = t.self();
    for (Py_ssize_t i = 0; i < args.count; ++i) arguments[i + 1] = py::handle(args.values[i]);
    py::object result = steal(PyObject_CallObject(method.ptr(), arguments.ptr()));
    clean(t);
    return result;
}

py::object TupleDict_pop(TupleDict& t, Args args) {
    const int found = args.count ? PyDict_Contains(t.self().ptr(), args.values[0]) : 0;
    PyErr_Clear();  // dict tells better what is wrong with the key
    if (found > 0) keep_positions(t);
    return call_dict(t, "pop", args);
}

py::object TupleDict_popitem(TupleDict& t, Args args) {
    keep_positions(t);
    return call_dict(t, "popitem", args);
}

py::object TupleDict_update(TupleDict& t, Args args) { return call_dict(t, "update", args); }

void TupleDict_setord(TupleDict& t, Args args) {
    static const Signature<1> kSignature{"setord", 1, {Name("ord")}};
    const auto [ord] = kSignature.parse(args);
    tupledict_setord(t, ord);
}

void TupleDict_clean(TupleDict& t) { Py_CLEAR(t.keys); }

PyMethodDef methods[] = {
    {"keys", method<tupledict_keys>, METH_NOARGS,
     "keys($self, /)\n--\n\n"
     "The tuplelist of all keys in order: those set one by one or named by setord in that order, then the others.\n\n"
     "The same object until the dict changes. Raises ValueError if the keys are of different kinds or lengths."},
    {"values", method<tupledict_values>, METH_NOARGS, "values($self, /)\n--\n\nA list of all values in key order."},
    {"items", method<tupledict_items>, METH_NOARGS,
     "items($self, /)\n--\n\nA list of all pairs of key and value in key order."},
    {"iterkeys", method<tupledict_iter>, METH_NOARGS, "iterkeys($self, /)\n--\n\nAn iterator over all keys in order."},
    {"itervalues", method<tupledict_itervalues>, METH_NOARGS,
     "itervalues($self, /)\n--\n\nAn iterator over all values in key order."},
    {"iteritems", method<tupledict_iteritems>, kKeywords,
     "iteritems($self, /, *vals)\n--\n\n"
     "An iterator over the pairs of key and value whose keys match the pattern `vals`, as tuplelist.select takes it."},
    {"select", method<tupledict_select>, kKeywords,
     "select($self, /, *vals)\n--\n\n"
     "A list of the values whose keys match the pattern `vals`, as tuplelist.select takes it."},
    {"subset", method<tupledict_subset>, kKeywords,
     "subset($self, /, *vals)\n--\n\n"
     "A new tupledict of the keys that match the pattern `vals`, in the order of the selection."},
    {"sum", method<tupledict_sum>, kKeywords,
     "sum($self, /, *vals)\n--\n\n"
     "The sum of the values (Var, LinExpr, QuadExpr or scalar) whose keys match the pattern `vals`, as an "
     "expression.\n\n"
     "    flow = model.addVars([1, 2], [1, 2, 3])\n"
     "    flow.sum(\"*\", 3)         # flow[1, 3] + flow[2, 3]"},
    {"prod", method<tupledict_prod>, kKeywords,
     "prod($self, /, d, *vals)\n--\n\n"
     "The sum of coefficient times value over the keys that match the pattern `vals` and have a coefficient.\n\n"
     "`d` is a dict of coefficients under the same keys or, without a pattern, a list whose positions are the keys.\n"
     "Raises TypeError for anything else, and where a list doesn't hold coefficients."},
    {"setord", method<TupleDict_setord>, kKeywords,
     "setord($self, /, ord)\n--\n\n"
     "Set the order of the keys to that of the sequence `ord`. Seen after the next change or clean()."},
    {"clean", method<TupleDict_clean>, METH_NOARGS,
     "clean($self, /)\n--\n\nDrop the key list and its indices. They are built again on demand."},
    {"clear", method<TupleDict_clear>, METH_NOARGS, "clear($self, /)\n--\n\nRemove all items."},
    {"pop", method<TupleDict_pop>, kKeywords,
     "pop($self, key, default=<unrepresentable>, /)\n--\n\n"
     "Remove `key` and return its value, or the default if it is missing. Raises KeyError without a default."},
    {"popitem", method<TupleDict_popitem>, kKeywords,
     "popitem($self, /)\n--\n\nRemove and return the pair that entered the dict last. Raises KeyError if it is empty."},
    {"update", method<TupleDict_update>, kKeywords,
     "update($self, other=(), /)\n--\n\n"
     "Take over the items of a dict or of an iterable of pairs. New keys stand behind those with a position."},
    {"__getstate__", method<TupleDict_getstate>, METH_NOARGS,
     "__getstate__($self, /)\n--\n\n"
     "State for pickle and copy beside the items: the wildcard and the instance dictionary or None."},
    {"__setstate__", method<TupleDict_setstate>, METH_O,
     "__setstate__($self, state, /)\n--\n\n"
     "Take over what __getstate__ gave. Raises TypeError for anything else."},
    {}};

PyGetSetDef properties[] = {
    {"wild", getter_of<get_wild>, reinterpret_cast<setter>(slot<set_wild>()),
     "Value that stands for any value in a pattern; taken up when the key list is built next.", nullptr},
    dict_property("Attributes that a user has set."),
    {}};

PyMemberDef members[] = {dict_at(offsetof(TupleDict, attributes)), weakrefs_at(offsetof(TupleDict, weakrefs)), {}};

const char kDoc[] =
    "tupledict(*args, **kwargs)\n--\n\n"
    "A dict whose keys, tuples of one length or scalars, can be searched by patterns. Arguments as for dict.\n\n"
    "The keys have an order of their own: a key that is set moves to the end. Iteration follows it, and keys(),\n"
    "values() and items() are lists in it.\n\n"
    "    cost = tupledict({(1, \"a\"): 4, (1, \"b\"): 5, (2, \"a\"): 6})\n"
    "    cost.select(\"*\", \"a\")    # [4, 6]";

PyType_Slot slots[] = {{Py_tp_doc, const_cast<char*>(kDoc)},
                       {Py_tp_init, slot<TupleDict_init>()},
                       {Py_tp_dealloc, reinterpret_cast<void*>(TupleDict_dealloc)},
                       {Py_tp_traverse, reinterpret_cast<void*>(TupleDict_traverse)},
                       {Py_tp_clear, reinterpret_cast<void*>(TupleDict_tp_clear)},
                       {Py_tp_iter, slot<tupledict_iter>()},
                       {Py_mp_ass_subscript, slot<TupleDict_ass_subscript>()},
                       {Py_tp_methods, methods},
                       {Py_tp_getset, properties},
                       {Py_tp_members, members},
                       {0, nullptr}};

PyType_Spec spec = {"zelvanpy.tupledict", sizeof(TupleDict), 0,
                    Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC, slots};

}  // namespace

py::object new_tupledict() { return steal(PyObject_CallObject(reinterpret_cast<PyObject*>(TupleDict_Type), nullptr)); }

py::object new_tupledict(py::handle keys, py::handle values) {
    py::object result = new_tupledict();
    for (Py_ssize_t i = 0; i < PySequence_Fast_GET_SIZE(keys.ptr()); ++i) {
        const py::object key = borrow(PySequence_Fast_GET_ITEM(keys.ptr(), i));  // hashing may run code that drops it
        checked(PyDict_SetItem(result.ptr(), key.ptr(), PySequence_Fast_GET_ITEM(values.ptr(), i)));
    }
    return result;
}

void tupledict_set(TupleDict& t, py::handle key, py::handle value) {
    const Py_ssize_t size_before = size_of(t);
    checked(PyDict_SetItem(t.self().ptr(), key.ptr(), value.ptr()));
    set_position(t, key, size_before);
    clean(t);
}

void tupledict_setord(TupleDict& t, py::handle ord) {
    const Py_ssize_t num = checked(PyObject_Size(ord.ptr()));
    if (is_rank_order(t, ord, num)) {
        t.ordered = num;
        Py_CLEAR(t.positions);
        return;
    }
    py::object positions = steal(PyDict_New());
    for (Py_ssize_t i = 0; i < num; ++i) {
        const py::int_ number(i);
        const py::object key = steal(PyObject_GetItem(ord.ptr(), number.ptr()));
        checked(PyDict_SetItem(positions.ptr(), key.ptr(), number.ptr()));
    }
    Py_XSETREF(t.positions, positions.release().ptr());
}

py::object new_tupledict_like(TupleDict& source, py::handle own, py::handle values) {
    py::object result = new_tupledict();
    set_keys_of(result.ptr(), source.self().ptr(), own.ptr(), values.ptr());
    return result;
}

py::object tupledict_keys(TupleDict& t) {
    const std::uint64_t version = version_of(t.dict);
    if (t.keys && t.keys_version == version && PyList_GET_SIZE(t.keys)) return borrow(t.keys);
    py::object keys = steal(PyDict_Keys(t.self().ptr()));
    if (t.positions) sort_keys(keys.ptr(), borrow(t.positions).ptr());
    keys = new_tuplelist(std::move(keys), borrow(t.wild));
    Py_INCREF(keys.ptr());
    Py_XSETREF(t.keys, keys.ptr());
    t.keys_version = version;
    return keys;
}

void init_tupledict(py::module_& module) {
    TupleDict_Type = make_type(module, spec, reinterpret_cast<PyObject*>(&PyDict_Type));
    init_tupledict_iterator();
}

}  // namespace zelvanpy
