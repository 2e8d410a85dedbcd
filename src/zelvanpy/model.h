#pragma once
// `Model`: one library model and the lists of its handles. model.cpp is the spine, the other model_*.cpp
// add methods.

#include <cstddef>

#include "handle.h"

namespace zelvanpy {

struct Model {
    PyObject_HEAD PyObject* cmodel;  // capsule or None
    PyObject* callback;              // _callback
    PyObject* uenv;                  // _uenv: Env or None
    PyObject* env;                   // _env: wrapper Env round the model's own environment
    PyObject* vars;                  // lists of handles, null until set up
    PyObject* constrs;
    PyObject* sos;
    PyObject* qconstrs;
    PyObject* genconstrs;
    PyObject* dict;
    PyObject* weakrefs;
    Py_ssize_t live_vars;  // how many leading entries existed at the last update
    Py_ssize_t live_constrs;
    int new_ranges;     // range rows added since the last update, which may bring helper columns
    int update_mode;    // cached UpdateMode, -1 not cached
    bool deleted_vars;  // some Var is marked for removal
    bool deleted_constrs;
    bool solving;  // the library works on the model without the interpreter lock
};

static_assert(offsetof(Model, cmodel) == offsetof(ModelHead, cmodel));

inline ZVNmodel* model_pointer(const Model& model) { return model_pointer(py::handle(model.cmodel)); }
inline PyObject* as_object(Model& model) { return reinterpret_cast<PyObject*>(&model); }

[[noreturn]] void raise_freed();  // ZelvanError(0, "Model has already been freed")
// Raises that for a disposed model.
void require_open(const Model& model);
// getAttr; objs may be null.
py::object model_get_attr(Model& model, py::handle name, py::handle objs);
// setAttr; arg2 may be null.
void model_set_attr(Model& model, py::handle name, py::handle arg1, py::handle arg2);
// The same where the lists of handles are missing, too, as after a second __init__.
void require_lists(const Model& model);
// A handle for an object that is about to be added. To be made before the model is looked at: making an object may
// run finalizers, which must neither find the object without its handle nor move what was found.
py::object new_member(const Model& model, PyTypeObject* type);
// Refuses the handle of a new_member() when the model has become another one since.
void require_member(const Model& model, py::handle member);
// Calls an own method by name, so that one of a subclass counts.
py::object call_own(Model& model, const char* name, py::handle argument);
// Writes a line to the model's log.
void model_message(Model& model, py::handle message);
// Builds the lists if they are not there yet.
void model_setup(Model& model, bool empty = false);
void model_update(Model& model);
void model_dispose(Model& model);
// 1 when new Var and Constr handles know their index at once.
int model_update_mode(Model& model);
// Whether the object's capsule is that of the model.
inline bool model_owns(const Model& model, const Handle* handle) { return handle->cmodel == model.cmodel; }

// Methods by unit, each ended by an empty entry; model.cpp joins them into one table.
extern PyMethodDef model_update_methods[];
extern PyMethodDef model_list_methods[];
extern PyMethodDef model_coeff_methods[];
extern PyMethodDef model_file_methods[];
extern PyMethodDef model_attr_methods[];
extern PyMethodDef model_param_methods[];
extern PyMethodDef model_solve_methods[];
extern PyMethodDef model_build_var_methods[];
extern PyMethodDef model_build_constr_methods[];
extern PyMethodDef model_build_objective_methods[];
extern PyMethodDef model_matrix_methods[];
extern PyMethodDef model_matrix_quad_methods[];

}  // namespace zelvanpy
