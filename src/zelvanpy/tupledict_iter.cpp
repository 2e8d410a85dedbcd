// Iterators over the keys, values or pairs of a tupledict.

#include "pycontainer.h"
#include "pytype.h"
#include "tupledict.h"
#include "tuplelist.h"

namespace zelvanpy {

namespace {

const Name kKeys("keys");
const Name kSelect("select");

enum class Yield { kKey, kValue, kPair };

struct Iterator {
    PyObject_HEAD PyObject* dict;  // null when exhausted
    PyObject* pattern;             // tuple; null for all keys
    PyObject* keys;                // list; null before the first step
    Py_ssize_t next;
    DictCursor cursor;
    Yield yield;
    bool plain;
    bool running;
};

PyTypeObject* Iterator_Type = nullptr;

py::object new_iterator(TupleDict& t, Yield yield, py::object pattern = {}) {
    Iterator* it = PyObject_GC_New(Iterator, Iterator_Type);
    if (!it) throw PythonError{};
    own_type(Iterator_Type);
    it->dict = t.self().inc_ref().ptr();
    it->pattern = pattern.release().ptr();
    it->keys = nullptr;
    it->next = 0;
    it->cursor = DictCursor(t.self());
    it->yield = yield;
    it->running = false;
    PyObject_GC_Track(it);
    return py::reinterpret_steal<py::object>(reinterpret_cast<PyObject*>(it));
}

void finish(Iterator& it) {
    Py_CLEAR(it.dict);
    Py_CLEAR(it.pattern);
    Py_CLEAR(it.keys);
}

// The matching keys; through methods where a subclass has replaced them.
py::object matching_keys(TupleDict& t, bool plain, PyObject* pattern) {
    py::object keys =
        plain ? tupledict_keys(t) : steal(PyObject_CallMethodObjArgs(t.self().ptr(), kKeys.get(), nullptr));
    if (pattern && is_tuplelist(keys) && !overrides(keys, TupleList_Type, kSelect))
        keys = selected_list(select(as_tuplelist(keys), &PyTuple_GET_ITEM(pattern, 0), PyTuple_GET_SIZE(pattern)));
    else if (pattern)
        keys = steal(PyObject_CallObject(keys.attr(kSelect.text()).ptr(), pattern));
    return PyList_Check(keys.ptr()) ? keys : steal(PySequence_List(keys.ptr()));
}

py::object value_of(Iterator& it, py::handle dict, py::handle key) {
    PyObject* value = it.plain ? it.cursor.find(key.ptr()) : nullptr;
    return value ? borrow(value) : steal(PyObject_GetItem(dict.ptr(), key.ptr()));
}

py::object step(Iterator& it, py::handle dict) {
    if (!it.keys) {
        TupleDict& t = as_tupledict(dict);
        it.plain = is_plain(t);
        py::object keys = matching_keys(t, it.plain, it.pattern);
        Py_XSETREF(it.keys, keys.release().ptr());
    }
    if (it.next >= PyList_GET_SIZE(it.keys)) {
        finish(it);
        return {};
    }
    py::object key = borrow(PyList_GET_ITEM(it.keys, it.next++));
    if (it.yield == Yield::kKey) return key;
    py::object value = value_of(it, dict, key);
    if (it.yield == Yield::kValue) return value;
    py::object pair = steal(PyTuple_New(2));
    PyTuple_SET_ITEM(pair.ptr(), 0, key.release().ptr());
    PyTuple_SET_ITEM(pair.ptr(), 1, value.release().ptr());
    return pair;
}

py::object Iterator_next(Iterator& it) {
    // A step may run code that asks for the next one, which would end the iterator below the first.
    if (it.running) throw py::value_error("generator already executing");
    if (!it.dict) return {};
    const py::object dict = borrow(it.dict);
    it.running = true;
    try {
        py::object result = step(it, dict);
        it.running = false;
        return result;
    } catch (...) {
        it.running = false;
        finish(it);
        throw;
    }
}

int Iterator_traverse(PyObject* self, visitproc visit, void* arg) {
    const auto* it = reinterpret_cast<Iterator*>(self);
    Py_VISIT(it->dict);
    Py_VISIT(it->pattern);
    Py_VISIT(it->keys);
    return visit_type(self, visit, arg);
}

int Iterator_clear(PyObject* self) {
    finish(*reinterpret_cast<Iterator*>(self));
    return 0;
}

void Iterator_dealloc(PyObject* self) {
    PyObject_GC_UnTrack(self);
    finish(*reinterpret_cast<Iterator*>(self));
    free_instance(self, Iterator_Type);
}

PyType_Slot slots[] = {{Py_tp_dealloc, reinterpret_cast<void*>(Iterator_dealloc)},
                       {Py_tp_traverse, reinterpret_cast<void*>(Iterator_traverse)},
                       {Py_tp_clear, reinterpret_cast<void*>(Iterator_clear)},
                       {Py_tp_iter, reinterpret_cast<void*>(PyObject_SelfIter)},
                       {Py_tp_iternext, slot<Iterator_next>()},
                       {0, nullptr}};

PyType_Spec spec = {"zelvanpy.tupledict_iterator", sizeof(Iterator), 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_GC, slots};

}  // namespace

py::object tupledict_iter(TupleDict& t) { return new_iterator(t, Yield::kKey); }
py::object tupledict_itervalues(TupleDict& t) { return new_iterator(t, Yield::kValue); }

py::object tupledict_iteritems(TupleDict& t, Args args) {
    refuse_keywords("iteritems", args);
    py::tuple pattern(args.count);
    for (Py_ssize_t i = 0; i < args.count; ++i) pattern[i] = py::handle(args.values[i]);
    return new_iterator(t, Yield::kPair, std::move(pattern));
}

void init_tupledict_iterator() {
    Iterator_Type = reinterpret_cast<PyTypeObject*>(steal(PyType_FromSpec(&spec)).release().ptr());
}

}  // namespace zelvanpy
