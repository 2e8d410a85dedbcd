#include "dormant.h"

#include "pynames.h"

namespace zelvanpy {

namespace {

DormantClass* first_class = nullptr;
bool stale = false;       // something woke or a handle got a dict since the rings were gone through
bool registered = false;  // the collector calls before_collection, or will soon

void wake_ring(DormantClass& of) {
    for (DormantLink* link = of.ring.next; link != &of.ring;) {
        DormantLink* next = link->next;
        PyObject* object = reinterpret_cast<PyObject*>(reinterpret_cast<char*>(link) - of.link_offset);
        if (of.must_wake(object)) {
            leave_ring(*link);
            PyObject_GC_Track(object);
        }
        link = next;
    }
}

bool is_full_collection(PyObject* phase, PyObject* info) {
    static const Name kStart("start"), kGeneration("generation");
    if (!PyUnicode_Check(phase) || !kStart.is(phase) || !PyDict_Check(info)) return false;
    PyObject* generation = PyDict_GetItem(info, kGeneration.get());
    return generation && PyLong_Check(generation) && PyLong_AsLong(generation) == 2;
}

// An entry of gc.callbacks.
PyObject* before_collection(PyObject*, PyObject* args) {
    PyObject *phase, *info;
    if (!PyArg_ParseTuple(args, "OO", &phase, &info)) return nullptr;
    if (stale && is_full_collection(phase, info)) {
        stale = false;
        for (DormantClass* of = first_class; of; of = of->next_class) wake_ring(*of);
    }
    Py_RETURN_NONE;
}

PyMethodDef callback_definition = {
    "_before_collection", before_collection, METH_VARARGS,
    "_before_collection(phase, info)\n--\n\nShow the collector the expressions that may be part of a cycle."};

void append_callback() {
    py::object gc = steal(PyImport_ImportModule("gc"));
    py::object callbacks = steal(PyObject_GetAttrString(gc.ptr(), "callbacks"));
    py::object callback = steal(PyCFunction_New(&callback_definition, nullptr));
    checked(PyList_Append(callbacks.ptr(), callback.ptr()));
}

int register_callback(void*) {
    run_unraisable(nullptr, append_callback);  // without it such cycles are not found; nothing else depends on it
    return 0;
}

// To register runs Python code, which must wait until nobody is in the middle of an expression.
void mark_stale() noexcept {
    stale = true;
    if (!registered) registered = Py_AddPendingCall(register_callback, nullptr) == 0;
}

}  // namespace

void add_dormant_class(DormantClass& listed) {
    listed.ring.previous = listed.ring.next = &listed.ring;
    DormantClass** end = &first_class;
    while (*end) end = &(*end)->next_class;
    *end = &listed;
}

void wake(PyObject* object, DormantLink& link) {
    leave_ring(link);
    PyObject_GC_Track(object);
    mark_stale();  // a dormant object may hold this one
}

bool is_inert(PyObject* object) {
    PyTypeObject* type = Py_TYPE(object);
    if (type == Var_Type) return is_inert(reinterpret_cast<Handle*>(object));
    for (DormantClass* of = first_class; of; of = of->next_class)
        if (type == of->type)
            return reinterpret_cast<DormantLink*>(reinterpret_cast<char*>(object) + of->link_offset)->next != nullptr;
    return type == &PyFloat_Type || type == &PyLong_Type || type == &PyBool_Type || type == &PyUnicode_Type ||
           object == Py_None;
}

void handle_gained_dict() noexcept { mark_stale(); }

}  // namespace zelvanpy
