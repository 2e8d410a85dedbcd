// `Model`: construction, disposal, attribute syntax and the type. The lists of handles are in
// model_lists.cpp, files and log in model_files.cpp.

#include "model.h"

#include <cstddef>
#include <vector>

#include "attrutil.h"
#include "env.h"
#include "exception.h"
#include "param.h"
#include "pyargs.h"
#include "pytype.h"

namespace zelvanpy {

void raise_freed() { raise_zelvan(0, "Model has already been freed"); }

void require_open(const Model& model) {
    if (model.cmodel == Py_None) raise_freed();
}

void require_lists(const Model& model) {
    if (model.cmodel == Py_None || !model.vars) raise_freed();
}

py::object new_member(const Model& model, PyTypeObject* type) {
    py::object handle = steal(new_handle(type, model.cmodel, -1));
    require_member(model, handle);
    return handle;
}

void require_member(const Model& model, py::handle member) {
    if (!model.vars || !model_owns(model, as_handle(member))) raise_freed();
}

py::object call_own(Model& model, const char* name, py::handle argument) {
    const py::object text = to_str(name);
    return steal(PyObject_CallMethodObjArgs(as_object(model), text.ptr(), argument.ptr(), nullptr));
}

namespace {

void set_field(PyObject*& field, py::object value) {
    PyObject* old = field;
    field = value.release().ptr();
    Py_XDECREF(old);
}

// --- life

PyObject* Model_new(PyTypeObject* type, PyObject*, PyObject*) {
    py::object object = steal(type->tp_alloc(type, 0));
    Model& self = *reinterpret_cast<Model*>(object.ptr());
    for (PyObject** field : {&self.cmodel, &self.callback, &self.uenv, &self.env}) set_field(*field, none());
    self.update_mode = -1;
    return object.release().ptr();
}

py::object new_library_model(py::handle name, py::handle uenv) {
    const CString text(name);
    ZVNmodel* model = nullptr;
    const py::object cenv = uenv.attr("_cenv");
    check(ZVNnewmodel(env_pointer(cenv), &model, text, 0, nullptr, nullptr, nullptr, nullptr, nullptr), uenv);
    return wrap_pointer(model);
}

void require_argument(py::handle value, bool right, const char* argument, const char* wanted) {
    if (right || value.is_none()) return;
    PyErr_Format(PyExc_TypeError, "Model() argument '%s' must be %s or None, not %.200s", argument, wanted,
                 Py_TYPE(value.ptr())->tp_name);
    throw PythonError{};
}

void store_parameters(Model& self) {
    const py::object env = borrow(self.env);  // a second __init__ amid the first would replace it
    const py::object params = new_params(env);
    const py::object fields = steal(PyObject_GenericGetDict(as_object(self), nullptr));
    checked(PyDict_SetItemString(fields.ptr(), "Params", params.ptr()));
    checked(PyDict_SetItemString(fields.ptr(), "params", params.ptr()));
}

void Model_init(Model& self, PyObject* args, PyObject* kwargs) {
    static const Signature<3> signature{"Model", 0, {Name("name"), Name("env"), Name("cmodel")}};
    auto [name, env, cmodel] = signature.parse(args, kwargs);
    const bool given = cmodel && cmodel != Py_None;
    py::object uenv = env ? borrow(env) : none();
    require_argument(uenv, PyObject_TypeCheck(uenv.ptr(), Env_Type), "env", "an Env");
    if (given) require_argument(cmodel, PyCapsule_CheckExact(cmodel), "cmodel", "the capsule of a model");
    if (!given && uenv.is_none()) uenv = default_env();
    const py::object capsule = given ? borrow(cmodel) : new_library_model(name ? borrow(name) : py::str(""), uenv);
    const py::object own_env = wrap_env(ZVNgetenv(model_pointer(capsule)));
    model_dispose(self);
    self.update_mode = -1;
    self.new_ranges = 0;
    set_field(self.cmodel, capsule);
    set_field(self.uenv, uenv);
    set_field(self.callback, none());
    set_field(self.env, own_env);  // last: giving up the old one may run code
    if (!given) model_setup(self, true);
    store_parameters(self);
    check(ZVNsetlogcallbackfunc(model_pointer(self), log_callback_stub, nullptr), as_object(self));
    call_own(self, "update", {});
}

int Model_traverse(PyObject* object, visitproc visit, void* arg) {
    Model& self = *reinterpret_cast<Model*>(object);
    Py_VISIT(self.callback);
    Py_VISIT(self.uenv);
    Py_VISIT(self.env);
    Py_VISIT(self.vars);
    Py_VISIT(self.constrs);
    Py_VISIT(self.sos);
    Py_VISIT(self.qconstrs);
    Py_VISIT(self.genconstrs);
    Py_VISIT(self.dict);
    return visit_type(object, visit, arg);
}

// The library's model goes even where a subclass has replaced what would have disposed of it.
int Model_clear(PyObject* object) {
    Model& self = *reinterpret_cast<Model*>(object);
    run_unraisable(nullptr, [&] { model_dispose(self); });
    Py_CLEAR(self.dict);
    Py_CLEAR(self.vars);
    Py_CLEAR(self.constrs);
    Py_CLEAR(self.sos);
    Py_CLEAR(self.qconstrs);
    Py_CLEAR(self.genconstrs);
    for (PyObject** field : {&self.callback, &self.uenv, &self.env}) set_field(*field, none());
    return 0;
}

void Model_finalize(PyObject* object) {
    run_unraisable(object, [=] { call_own(*reinterpret_cast<Model*>(object), "close", {}); });
}

void Model_dealloc(PyObject* object) {
    if (PyObject_CallFinalizerFromDealloc(object)) return;
    Model& self = *reinterpret_cast<Model*>(object);
    PyObject_GC_UnTrack(object);
    if (self.weakrefs) PyObject_ClearWeakRefs(object);
    Model_clear(object);
    for (PyObject* field : {self.cmodel, self.callback, self.uenv, self.env}) Py_XDECREF(field);
    free_instance(object, Model_Type);
}

void Model_close(Model& self) { call_own(self, "dispose", {}); }

py::object Model_enter(Model& self) { return borrow(as_object(self)); }

py::object Model_exit(Model& self, Args) {
    call_own(self, "close", {});
    return boolean(false);
}

// --- attribute syntax

PyObject* Model_getattro(PyObject* object, PyObject* name) {
    Model& self = *reinterpret_cast<Model*>(object);
    if (PyObject* value = stored_attribute(object, self.dict, name)) return value;
    if (Py_TYPE(object) == Model_Type) return model_get_attr(self, name, {}).release().ptr();
    return call_own(self, "getAttr", name).release().ptr();
}

int Model_setattro(PyObject* object, PyObject* name, PyObject* value) {
    Model& self = *reinterpret_cast<Model*>(object);
    if (!PyUnicode_Check(name) || !value || is_underscored(name)) return PyObject_GenericSetAttr(object, name, value);
    if (Py_TYPE(object) == Model_Type)
        model_set_attr(self, name, value, {});
    else
        steal(PyObject_CallMethod(object, "setAttr", "OO", name, value));
    return 0;
}

py::object Model_getattr_method(Model& self, py::handle name) { return call_own(self, "getAttr", name); }

py::object Model_dir(Model& self) {
    return directory(as_object(self), borrow(self.dict), attribute_names(self.cmodel, 0));
}

py::object model_value(Model& self, const char* attribute) { return model_get_attr(self, py::str(attribute), {}); }

PyObject* Model_repr(Model& self) {
    if (self.cmodel == Py_None) return PyUnicode_FromString("<zelvan.Model empty model>");
    const bool mip = model_value(self, "IsMIP").equal(py::int_(1));
    py::object name = model_value(self, "ModelName");
    if (py::len(name) == 0) name = py::str("Unnamed");
    const py::object changes = py::handle(as_object(self)).attr("Params").attr("_getChangeList")();
    return PyUnicode_FromFormat("<zelvan.Model %s instance %S: %S constrs, %S vars, %S>", mip ? "MIP" : "Continuous",
                                name.ptr(), model_value(self, "NumConstrs").ptr(), model_value(self, "NumVars").ptr(),
                                changes.ptr());
}

PyObject* Model_typename(Model&) { return PyUnicode_FromString("Model"); }
PyObject* Model_typeenum(Model&) { return PyLong_FromLong(0); }

PyMethodDef life_methods[] = {
    {"dispose", method<model_dispose>, METH_NOARGS,
     "dispose($self)\n--\n\n"
     "Free the library's model. Its handles become pending handles of no model; a second call does nothing.\n\n"
     "Raises ZelvanError while the model is being solved."},
    {"close", method<Model_close>, METH_NOARGS, "close($self)\n--\n\nThe same as dispose()."},
    {"__enter__", method<Model_enter>, METH_NOARGS, "__enter__($self)\n--\n\nThe model itself."},
    {"__exit__", method<Model_exit>, kKeywords,
     "__exit__($self, type, value, traceback)\n--\n\nDispose of the model; an exception goes on."},
    {"__getattr__", method<Model_getattr_method>, METH_O,
     "__getattr__($self, name, /)\n--\n\nThe attribute `name` of the model, as getAttr gives it."},
    {"__dir__", method<Model_dir>, METH_NOARGS,
     "__dir__($self)\n--\n\nSorted names of methods, stored fields and attributes."},
    {},
};

PyMemberDef members[] = {
    {"_cmodel", T_OBJECT, offsetof(Model, cmodel), READONLY, "Capsule of the library's model, None when disposed."},
    {"_callback", T_OBJECT, offsetof(Model, callback), READONLY, "State of the latest solve's callback, or None."},
    {"_uenv", T_OBJECT, offsetof(Model, uenv), READONLY, "The Env that the model was created on, or None."},
    {"_env", T_OBJECT, offsetof(Model, env), READONLY, "An Env round the model's own environment."},
    dict_at(offsetof(Model, dict)),
    weakrefs_at(offsetof(Model, weakrefs)),
    {},
};

PyGetSetDef properties[] = {
    {"_typename", getter_of<Model_typename>, nullptr, "Name of the kind of object (str).", nullptr},
    {"_typeenum", getter_of<Model_typeenum>, nullptr, "Number of the kind of object (int).", nullptr},
    dict_property("The stored fields."),
    {},
};

PyMethodDef* const method_tables[] = {life_methods,
                                      model_update_methods,
                                      model_list_methods,
                                      model_coeff_methods,
                                      model_file_methods,
                                      model_attr_methods,
                                      model_param_methods,
                                      model_solve_methods,
                                      model_build_var_methods,
                                      model_build_constr_methods,
                                      model_build_objective_methods,
                                      model_matrix_methods,
                                      model_matrix_quad_methods};

PyMethodDef* join_method_tables() {
    static std::vector<PyMethodDef> joined;
    for (const PyMethodDef* table : method_tables)
        for (; table->ml_name; ++table) joined.push_back(*table);
    joined.push_back({});
    return joined.data();
}

const char doc[] =
    "Model(name=\"\", env=None, cmodel=None)\n--\n\n"
    "An optimization model.\n\n"
    "name   its name (str)\n"
    "env    the Env to create it on; None stands for the default environment, which is created on first need\n"
    "cmodel a capsule round a model of the library, for internal use\n\n"
    "Changes are queued until update() or optimize(). Attributes of the model (m.NumVars, m.ObjVal, ...) are read and "
    "written as attributes of the object, parameters through m.Params. Raises ZelvanError when the library refuses.";

}  // namespace

void init_model(py::module_& module) {
    PyType_Slot slots[] = {
        {Py_tp_doc, const_cast<char*>(doc)},
        {Py_tp_new, slot<Model_new>()},
        {Py_tp_init, slot<Model_init>()},
        {Py_tp_dealloc, reinterpret_cast<void*>(Model_dealloc)},
        {Py_tp_finalize, reinterpret_cast<void*>(Model_finalize)},
        {Py_tp_traverse, reinterpret_cast<void*>(Model_traverse)},
        {Py_tp_clear, reinterpret_cast<void*>(Model_clear)},
        {Py_tp_getattro, slot<Model_getattro>()},
        {Py_tp_setattro, slot<Model_setattro>()},
        {Py_tp_repr, slot<Model_repr>()},
        {Py_tp_methods, join_method_tables()},
        {Py_tp_members, members},
        {Py_tp_getset, properties},
        {0, nullptr},
    };
    PyType_Spec spec{"zelvanpy.Model", sizeof(Model), 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC,
                     slots};
    Model_Type = make_type(module, spec);
}

}  // namespace zelvanpy
