#include "env.h"

#include <cstring>

#include "zelvan.h"

namespace zelvanpy {

PyTypeObject* Env_Type;

py::object default_env(bool create) {
    py::object env = stored_default_env();
    if (!env.is_none() && !is_env(env)) raise(PyExc_TypeError, "zelvan._defaultenv is neither an Env nor None");
    if (!env.is_none() || !create) return env;
    env = steal(PyObject_CallFunction(reinterpret_cast<PyObject*>(Env_Type), "sOOOO",
                                      is_interactive() ? "zelvan.log" : "", Py_False, Py_None, Py_None, Py_True));
    store_default_env(env);
    return env;
}

// The interpreter may end a thread inside any call of Python code, so the frames of the log bridge hold plain
// pointers: destructors would release objects without the lock.
namespace {

PyObject* without_newline(PyObject* text) {
    const Py_ssize_t length = PyUnicode_GET_LENGTH(text);
    const bool cut = length && PyUnicode_READ_CHAR(text, length - 1) == '\n';
    return PyUnicode_Substring(text, 0, cut ? length - 1 : length);
}

bool write_to_stdout(PyObject* text) {
    PyObject* stream = PySys_GetObject("stdout");
    if (!stream) {
        PyErr_SetString(PyExc_AttributeError, "module 'sys' has no attribute 'stdout'");
        return false;
    }
    Py_INCREF(stream);
    PyObject* written = PyObject_CallMethod(stream, "write", "O", text);
    PyObject* flushed = written ? PyObject_CallMethod(stream, "flush", nullptr) : nullptr;
    Py_DECREF(stream);
    Py_XDECREF(written);
    Py_XDECREF(flushed);
    return flushed != nullptr;
}

// Before anyone has imported logging, nobody listens.
bool write_to_logger(PyObject* line) {
    static const char kLogging[] = "logging";
    PyObject* name = PyUnicode_FromString(kLogging);
    PyObject* imported = name ? PyImport_GetModule(name) : nullptr;
    Py_XDECREF(name);
    if (!imported) return !PyErr_Occurred();
    Py_DECREF(imported);
    PyObject* logging = PyImport_ImportModule(kLogging);
    PyObject* logger = logging ? PyObject_CallMethod(logging, "getLogger", "s", "zelvanpy") : nullptr;
    PyObject* logged = logger ? PyObject_CallMethod(logger, "info", "O", line) : nullptr;
    Py_XDECREF(logging);
    Py_XDECREF(logger);
    Py_XDECREF(logged);
    return logged != nullptr;
}

void report_failure() {
    PyObject* context = PyUnicode_FromString("zelvanpy.logcallbackstub");
    PyErr_WriteUnraisable(context);
    Py_XDECREF(context);
}

// Tells of the first failure in a row of one receiver, of which the address is enough. The answer is `works`.
bool reported(bool works, const void* receiver, const void*& failing) {
    if (!works && failing == receiver)
        PyErr_Clear();
    else if (!works)
        report_failure();
    failing = works ? nullptr : receiver;
    return works;
}

void log_with_lock(const char* message) {
    PyObject *type, *value, *traceback;
    PyErr_Fetch(&type, &value, &traceback);
    PyObject* text = PyUnicode_DecodeUTF8(message, static_cast<Py_ssize_t>(std::strlen(message)), "replace");
    static const void *failing_stream = nullptr, *failing_logger = nullptr;
    const void* stream = PySys_GetObject("stdout");
    if (!stream) stream = &failing_stream;
    const bool written = text && reported(write_to_stdout(text), stream, failing_stream);
    PyObject* line = written ? without_newline(text) : nullptr;
    if (line) reported(write_to_logger(line), &failing_logger, failing_logger);
    if (PyErr_Occurred()) report_failure();
    Py_XDECREF(text);
    Py_XDECREF(line);
    PyErr_Restore(type, value, traceback);
}

}  // namespace

int log_callback_stub(const char* message, void*) {
    if (!python_alive()) return 0;
    try {
        const PyGILState_STATE state = PyGILState_Ensure();
        log_with_lock(message);
        PyGILState_Release(state);
    } catch (...) {
        translate_exception();
    }
    return 0;
}

void env_message(Env& env, py::handle line) {
    if (env.empty) {
        int output = 0;
        ZVNgetintparaminfo(env_pointer(env), "OutputFlag", &output, nullptr, nullptr, nullptr);
        if (output) print_line(line);
        return;
    }
    const py::object text = steal(PyUnicode_Concat(line.ptr(), to_str("\n").ptr()));
    ZVNmsg(env_pointer(env), CString(text));
}

py::object wrap_env(ZVNenv* env) {
    const py::object capsule = wrap_pointer(env);
    return steal(
        PyObject_CallFunction(reinterpret_cast<PyObject*>(Env_Type), "sOOO", "", Py_False, Py_None, capsule.ptr()));
}

}  // namespace zelvanpy
