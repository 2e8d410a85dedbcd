#pragma once
// `Model`: one library model and the lists of its handles. model.cpp is the spine, the other model_*.cpp
// add methods.

#include "handle.h"
#include "pybase.h"

namespace zelvanpy {

struct Model {
    PyObject_HEAD
    PyObject* cmodel;    // capsule or None
    PyObject* callback;  // _callback
    PyObject* uenv;      // _uenv: Env or None
    PyObject* env;       // _env: wrapper Env round the model's own environment
    PyObject* vars;      // lists of handles, null until set up
    PyObject* constrs;
    PyObject* sos;
    PyObject* qconstrs;
    PyObject* genconstrs;
    PyObject* dict;
    PyObject* weakrefs;
    Py_ssize_t live_vars;  // how many leading entries existed at the last update
    Py_ssize_t live_constrs;
    int new_ranges;        // range rows whose helper column the next update brings
    int update_mode;       // cached UpdateMode, -1 not cached
    bool deleted_vars;     // some Var is marked for removal
    bool deleted_constrs;
};

extern PyTypeObject* Model_Type;

inline bool is_model(py::handle h) { return PyObject_TypeCheck(h.ptr(), Model_Type); }
inline ZVNmodel* model_pointer(const Model& model) { return model_pointer(py::handle(model.cmodel)); }
inline PyObject* as_object(Model& model) { return reinterpret_cast<PyObject*>(&model); }

// Builds the lists if they are not there yet.
void model_setup(Model& model);
void model_update(Model& model);
// 1 when new Var and Constr handles know their index at once.
int model_update_mode(Model& model);
// Whether the object's capsule is that of the model.
inline bool model_owns(const Model& model, const Handle* handle) { return handle->cmodel == model.cmodel; }

// Methods by unit, each ended by an empty entry; model.cpp joins them into one table.
extern PyMethodDef model_spine_methods[];
extern PyMethodDef model_attr_methods[];
extern PyMethodDef model_param_methods[];
extern PyMethodDef model_solve_methods[];
extern PyMethodDef model_build_methods[];

void init_model(py::module_& module);

}  // namespace zelvanpy
