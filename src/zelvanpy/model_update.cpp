// `Model`: the update of its lists with that of the library, and disposal.

#include <iterator>
#include <utility>
#include <vector>

#include "env.h"
#include "exception.h"
#include "model_lists.h"

namespace zelvanpy {

namespace {

void delete_in_library(Model& model, const ListRow& row, Handle* handle) {
    const int index = handle->cindex();
    check(row.remove(model_pointer(model), 1, &index), as_object(model));
    handle->index = -2;
}

// Exchanges a list for one without the handles that are marked or gone, the others numbered anew, and leaves the old
// one in `spare`, which comes empty. The deletions are queued
// by the numbers of the last update, which hold until the library's own update.
void rebuild_list(Model& model, const ListRow& row, py::object& spare) {
    PyObject* const old = model.*row.list;
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(old); ++i) {
        Handle* handle = handle_at(old, i);
        if (handle->index < -2) {
            delete_in_library(model, row, handle);
        } else if (handle->index >= -1) {
            handle->index = static_cast<int>(PyList_GET_SIZE(spare.ptr()));
            checked(PyList_Append(spare.ptr(), PyList_GET_ITEM(old, i)));
        }
    }
    model.*row.list = spare.release().ptr();
    spare = py::reinterpret_steal<py::object>(old);
}

void update_counted_list(Model& model, const ListRow& row, py::object& spare) {
    PyObject* list = model.*row.list;
    for (Py_ssize_t i = model.*row.live; i < PyList_GET_SIZE(list); ++i) {
        Handle* handle = handle_at(list, i);
        if (handle->index >= -2) handle->index = static_cast<int>(i);
    }
    if (model.*row.deleted) {
        rebuild_list(model, row, spare);
        model.*row.deleted = false;
    }
    model.*row.live = PyList_GET_SIZE(model.*row.list);
}

void update_plain_list(Model& model, const ListRow& row, py::object& spare) {
    PyObject* list = model.*row.list;
    const Py_ssize_t size = PyList_GET_SIZE(list);
    bool deleted = false;
    for (Py_ssize_t i = 0; i < size && !deleted; ++i) deleted = handle_at(list, i)->index <= -2;
    if (deleted) rebuild_list(model, row, spare);
    list = model.*row.list;
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(list); ++i) handle_at(list, i)->index = static_cast<int>(i);
}

// Handles for the helper columns that the library made of range rows, which follow all other columns.
void append_range_helpers(Model& model, const std::vector<py::object>& helpers) {
    const Py_ssize_t made = count_of(model, "NumVars") - PyList_GET_SIZE(model.vars);
    for (Py_ssize_t i = 0; i < made; ++i) {
        as_handle(helpers.at(i))->index = static_cast<int>(PyList_GET_SIZE(model.vars));
        checked(PyList_Append(model.vars, helpers[i].ptr()));
    }
    model.live_vars = PyList_GET_SIZE(model.vars);
    model.new_ranges = 0;
}

}  // namespace

void model_update(Model& model) {
    require_open(model);
    // What is made comes first and what is given up goes last: both may run code that looks at the model.
    py::object lists[std::size(list_rows)];
    for (py::object& list : lists) list = steal(PyList_New(0));
    std::vector<py::object> helpers;
    while (model.vars && static_cast<Py_ssize_t>(helpers.size()) < model.new_ranges)
        helpers.push_back(new_member(model, Var_Type));
    require_open(model);
    for (std::size_t i = 0; i < std::size(list_rows); ++i) {
        const ListRow& row = list_rows[i];
        if (!(model.*row.list)) continue;
        if (row.live)
            update_counted_list(model, row, lists[i]);
        else
            update_plain_list(model, row, lists[i]);
    }
    model.update_mode = -1;
    check(ZVNupdatemodel(model_pointer(model)), as_object(model));
    if (!helpers.empty() && model.vars) append_range_helpers(model, helpers);
}

int model_update_mode(Model& model) {
    if (model.update_mode == -1) {
        ZVNenv* env = ZVNgetenv(model_pointer(model));
        check(ZVNgetintparaminfo(env, "UpdateMode", &model.update_mode, nullptr, nullptr, nullptr), model.env);
    }
    return model.update_mode;
}

namespace {

// What a field held, which holds `now` from here on.
py::object taken(PyObject*& field, PyObject* now) {
    return py::reinterpret_steal<py::object>(std::exchange(field, now));
}

}  // namespace

void model_dispose(Model& model) {
    if (model.cmodel == Py_None) return;
    if (model.solving)
        raise_zelvan(ZVN_ERROR_OPTIMIZATION_IN_PROGRESS, "The model can't be disposed of while it is being solved");
    // All is taken out of the model before anything is given up, which may run code that looks at the model.
    const py::object capsule = taken(model.cmodel, none().release().ptr());
    const py::object uenv = taken(model.uenv, none().release().ptr());
    py::object lists[std::size(list_rows)];
    for (std::size_t i = 0; i < std::size(list_rows); ++i) lists[i] = taken(model.*list_rows[i].list, nullptr);
    ZVNfreemodel(model_pointer(capsule));
    // Handles that are in no list any more share the capsule, which tells them from now on, and so does `_env`.
    invalidate_capsule(capsule);
    if (is_env(model.env)) invalidate_capsule(reinterpret_cast<Env*>(model.env)->cenv);
    for (const py::object& list : lists)
        for (Py_ssize_t i = 0; list && i < PyList_GET_SIZE(list.ptr()); ++i) {
            Handle* handle = handle_at(list.ptr(), i);
            handle->index = -1;
            taken(handle->cmodel, none().release().ptr());
        }
}

namespace {

void Model_update(Model& self) { model_update(self); }

PyObject* Model_getupdatemode(Model& self) { return PyLong_FromLong(model_update_mode(self)); }

}  // namespace

PyMethodDef model_update_methods[] = {
    {"update", method<Model_update>, METH_NOARGS,
     "update($self)\n--\n\n"
     "Apply the queued changes: number new objects, delete removed ones.\n\n"
     "Raises ZelvanError for a disposed model and when the library refuses."},
    {"_Model__getupdatemode", method<Model_getupdatemode>, METH_NOARGS,
     "__getupdatemode($self)\n--\n\nParameter UpdateMode (int) as of the last update."},
    {},
};

}  // namespace zelvanpy
