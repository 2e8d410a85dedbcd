#pragma once

#include "extern.h"

namespace zelvanpy {

struct Env {
    PyObject_HEAD PyObject* cenv;  // capsule or None
    PyObject* dict;
    PyObject* weakrefs;
    bool is_default;  // _default
    bool owner;       // _user: this object created the handle and frees it
    bool empty;       // _empty: created but not started
};

extern PyTypeObject* Env_Type;

inline PyObject* as_object(Env& env) { return reinterpret_cast<PyObject*>(&env); }
inline ZVNenv* env_pointer(const Env& env) { return env_pointer(py::handle(env.cenv)); }
inline bool is_env(py::handle h) { return PyObject_TypeCheck(h.ptr(), Env_Type); }

// A wrapper of a handle that somebody else owns.
py::object wrap_env(ZVNenv* env);
// Env._message: a line to the log, printed while the environment isn't started.
void env_message(Env& env, py::handle line);
// zelvan._getdefaultenv(create)
py::object default_env(bool create = true);
// The function that receives all log text of the library.
int log_callback_stub(const char* message, void* userdata);

}  // namespace zelvanpy
