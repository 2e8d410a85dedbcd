#pragma once
// Lists and dicts below their public methods: types derived from them, whether a dict has changed, values in the
// order of a dict. The differences between CPython 3.7 and 3.13 that concern them are settled here.

#include <cstdint>
#include <cstring>
#include <utility>

#include "pynames.h"
#include "pytype.h"

#if PY_VERSION_HEX >= 0x030B0000 && PY_VERSION_HEX < 0x030C0000
#include <cpython/longintrepr.h>
#elif PY_VERSION_HEX < 0x030B0000
#include <longintrepr.h>
#endif

namespace zelvanpy {

// Whether the class of `self`, derived from `own` in Python, gives the method of this name a body of its own.
inline bool overrides(py::handle self, PyTypeObject* own, const Name& name) {
    if (Py_TYPE(self.ptr()) == own) return false;
    const py::object theirs = steal(PyObject_GetAttr(reinterpret_cast<PyObject*>(Py_TYPE(self.ptr())), name.get()));
    return !theirs.is(steal(PyObject_GetAttr(reinterpret_cast<PyObject*>(own), name.get())));
}

// Holds one level of nested containers while it lives, as deep as Python lets functions call each other.
class NestingLevel {
public:
    // `where` ends the text of the RecursionError.
    explicit NestingLevel(const char* where) {
        if (Py_EnterRecursiveCall(where)) throw PythonError{};
    }
    ~NestingLevel() { Py_LeaveRecursiveCall(); }
    NestingLevel(const NestingLevel&) = delete;
    NestingLevel& operator=(const NestingLevel&) = delete;
};

// For a function that takes any number of values by position.
inline void refuse_keywords(const char* function, const Args& args) {
    if (!args.keywords || PyTuple_GET_SIZE(args.keywords) == 0) return;
    PyErr_Format(PyExc_TypeError, "%s() takes no keyword arguments", function);
    throw PythonError{};
}

// Ends a deallocator: gives the contents and the memory of a list or dict back, then the reference to the type.
// Nested containers are unwound by the trashcan instead of the C stack; for a Python subclass, Python sees to that.
template <class ClearOwn>
void dealloc_container(PyObject* self, PyTypeObject* own, PyTypeObject* base, [[maybe_unused]] destructor dealloc,
                       ClearOwn clear_own) {
    PyTypeObject* const type = Py_TYPE(self);
    PyObject_GC_UnTrack(self);
    const auto finish = [=] {
        clear_own();
        base->tp_dealloc(self);
        release_type(type, own);
    };
    if (type != own) return finish();
#if PY_VERSION_HEX >= 0x03090000
    Py_TRASHCAN_BEGIN(self, dealloc);
    finish();
    Py_TRASHCAN_END;
#else
    // At the deepest level the base's own trashcan would put the half-cleared object aside: it runs one level up.
    Py_TRASHCAN_SAFE_BEGIN(self);
    base->tp_clear(self);
    PyThreadState* const state = PyThreadState_GET();
    --state->trash_delete_nesting;
    finish();
    ++state->trash_delete_nesting;
    Py_TRASHCAN_SAFE_END(self);
#endif
}

// Takes over the state of a pickle or copy: the wildcard, and the instance dictionary or None.
inline void restore_state(py::handle self, py::handle state, PyObject*& wild) {
    PyObject* fields = state.ptr();
    const bool is_pair = PyTuple_Check(fields) && PyTuple_GET_SIZE(fields) == 2;
    PyObject* attributes = is_pair ? PyTuple_GET_ITEM(fields, 1) : nullptr;
    if (!is_pair || (attributes != Py_None && !PyDict_Check(attributes)))
        throw py::type_error("the state must be a tuple of a wildcard and a dict or None");
    Py_INCREF(PyTuple_GET_ITEM(fields, 0));
    Py_XSETREF(wild, PyTuple_GET_ITEM(fields, 0));
    if (attributes == Py_None) return;
    const py::object own = steal(PyObject_GenericGetDict(self.ptr(), nullptr));
    checked(PyDict_Update(own.ptr(), attributes));
}

// Exchanges the contents of two lists without touching an element.
inline void swap_lists(PyObject* a, PyObject* b) {
    auto* left = reinterpret_cast<PyListObject*>(a);
    auto* right = reinterpret_cast<PyListObject*>(b);
    std::swap(left->ob_item, right->ob_item);
    std::swap(left->allocated, right->allocated);
    std::swap(left->ob_base.ob_size, right->ob_base.ob_size);
}

// The start of every instance of a class derived from dict that has to notice its changes.
struct VersionedDict {
    PyDictObject dict;
#if PY_VERSION_HEX >= 0x030C0000
    std::uint64_t changes;  // 0 before the first question
#endif
};

// A number, never 0, that is another one after every change of the dict, whichever road the change took.
inline std::uint64_t version_of(VersionedDict& dict) {
#if PY_VERSION_HEX >= 0x030C0000
    if (!dict.changes) {
        static const int watcher =
            checked(PyDict_AddWatcher([](PyDict_WatchEvent, PyObject* changed, PyObject*, PyObject*) {
                ++reinterpret_cast<VersionedDict*>(changed)->changes;
                return 0;
            }));
        checked(PyDict_Watch(watcher, reinterpret_cast<PyObject*>(&dict)));
        dict.changes = 1;
    }
    return dict.changes;
#else
    return dict.dict.ma_version_tag;
#endif
}

// The value of an int of exact class, where it has one digit at most.
inline bool read_small_int(PyObject* number, Py_ssize_t& value) {
#if PY_VERSION_HEX >= 0x030C0000
    const auto* digits = reinterpret_cast<const PyLongObject*>(number);
    if (!PyUnstable_Long_IsCompact(digits)) return false;
    value = PyUnstable_Long_CompactValue(digits);
    return true;
#else
    const Py_ssize_t size = Py_SIZE(number);
    if (size < -1 || size > 1) return false;
    value = size * static_cast<Py_ssize_t>(reinterpret_cast<const PyLongObject*>(number)->ob_digit[0]);
    return true;
#endif
}

// Whether two keys are certainly equal; runs no Python code. False tells nothing.
inline bool equal_at_sight(PyObject* a, PyObject* b) {
    if (a == b) return true;
    PyTypeObject* const type = Py_TYPE(a);
    if (type != Py_TYPE(b)) return false;
    if (type == &PyLong_Type) {
        Py_ssize_t left, right;
        return read_small_int(a, left) && read_small_int(b, right) && left == right;
    }
    if (type == &PyUnicode_Type) {
        return PyUnicode_IS_READY(a) && PyUnicode_IS_READY(b) && PyUnicode_GET_LENGTH(a) == PyUnicode_GET_LENGTH(b) &&
               PyUnicode_KIND(a) == PyUnicode_KIND(b) &&
               !std::memcmp(PyUnicode_DATA(a), PyUnicode_DATA(b), PyUnicode_GET_LENGTH(a) * PyUnicode_KIND(a));
    }
    return false;
}

// The same for keys that may be tuples.
inline bool keys_equal_at_sight(PyObject* a, PyObject* b) {
    if (a == b) return true;
    if (!PyTuple_CheckExact(a) || !PyTuple_CheckExact(b)) return equal_at_sight(a, b);
    const Py_ssize_t size = PyTuple_GET_SIZE(a);
    if (size != PyTuple_GET_SIZE(b)) return false;
    for (Py_ssize_t i = 0; i < size; ++i)
        if (!equal_at_sight(PyTuple_GET_ITEM(a, i), PyTuple_GET_ITEM(b, i))) return false;
    return true;
}

// Looks keys up in a dict. Usual keys that come in the dict's order cost no hashing.
class DictCursor {
public:
    explicit DictCursor(py::handle dict) : dict_(dict.ptr()) {}

    // The value of a key that comes next, borrowed; null tells nothing. Runs no Python code.
    PyObject* find_next(PyObject* key) {
        if (misses_ == kMaxMisses) return nullptr;
        Py_ssize_t position = position_;
        PyObject *candidate, *value;
        for (int step = 0; step < 2 && PyDict_Next(dict_, &position, &candidate, &value); ++step)
            if (keys_equal_at_sight(candidate, key)) {
                position_ = position;
                misses_ = 0;
                return value;
            }
        ++misses_;
        return nullptr;
    }

    // Borrowed; null where the dict doesn't have the key.
    PyObject* find(PyObject* key) {
        if (PyObject* value = find_next(key)) return value;
        const py::object keep = borrow(key);  // a comparison may run code that drops it
        PyObject* value = PyDict_GetItemWithError(dict_, key);
        if (!value && PyErr_Occurred()) throw PythonError{};
        return value;
    }

private:
    static constexpr int kMaxMisses = 16;  // in a row, after which the orders are taken to differ
    PyObject* dict_;
    Py_ssize_t position_ = 0;
    int misses_ = 0;
};

// Sets each key of `from` to the value that stands at the place of its own, in a dict that holds none of them. Keys
// aren't hashed again where the interpreter lets them be. `own` lists the values of `from` as they were found earlier.
inline void set_keys_of(PyObject* to, PyObject* from, PyObject* own, PyObject* values) {
    PyObject *key, *found;
    Py_ssize_t position = 0, i = 0;
    const auto is_next = [&] { return i < PyList_GET_SIZE(own) && PyList_GET_ITEM(own, i) == found; };
#if PY_VERSION_HEX < 0x030D0000
    Py_hash_t hash;
    while (_PyDict_Next(from, &position, &key, &found, &hash) && is_next()) {
        const py::object held = borrow(key);  // comparing keys may run code that changes the dict
        checked(_PyDict_SetItem_KnownHash(to, key, PyList_GET_ITEM(values, i++), hash));
    }
#else
    while (PyDict_Next(from, &position, &key, &found) && is_next()) {
        const py::object held = borrow(key);
        checked(PyDict_SetItem(to, key, PyList_GET_ITEM(values, i++)));
    }
#endif
    if (i == PyList_GET_SIZE(own) && PyDict_Size(from) == i) return;
    raise(PyExc_RuntimeError, "dictionary changed during iteration");
}

}  // namespace zelvanpy
