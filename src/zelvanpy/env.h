#pragma once

#include "pybase.h"

namespace zelvanpy {

struct Env {
    PyObject_HEAD
    PyObject* cenv;  // capsule or None
    PyObject* dict;
    PyObject* weakrefs;
    bool is_default;  // _default
    bool owner;       // _user: this object created the handle and frees it
    bool empty;       // _empty: created but not started
};

extern PyTypeObject* Env_Type;

// A wrapper of a handle that somebody else owns.
py::object wrap_env(ZVNenv* env);
// zelvan._getdefaultenv(create)
py::object default_env(bool create = true);
// zelvan._getmodels(): list of (name, model) pairs found in __main__
py::object main_models();
// The function that receives all log text of the library.
int log_callback_stub(const char* message, void* userdata);

void init_env(py::module_& module);
// Class `zelvan` and the module functions read, models, disposeDefaultEnv, system.
void init_zelvan(py::module_& module);

}  // namespace zelvanpy
