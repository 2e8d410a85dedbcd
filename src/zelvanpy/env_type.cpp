// Class `Env`.

#include <vector>

#include "env.h"
#include "exception.h"
#include "param.h"
#include "pyargs.h"
#include "pyiter.h"
#include "pytype.h"
#include "zelvan.h"

namespace zelvanpy {

namespace {

const Name kClose("close"), kDispose("dispose"), kItems("items"), kSetParam("setParam"), kWrite("write"),
    kFlush("flush");

void replace_capsule(Env& env, py::object capsule) {
    const py::object old = py::reinterpret_steal<py::object>(env.cenv);
    env.cenv = capsule.release().ptr();
}

void free_handle(Env& env) {
    ZVNfreeenv(env_pointer(env));
    invalidate_capsule(env.cenv);
    replace_capsule(env, none());
}

// Models in __main__ are closed before the default environment at the end of the process.
void close_main_models() {
    const py::object models = main_models();
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(models.ptr()); ++i) {
        PyObject* model = PyTuple_GET_ITEM(PyList_GET_ITEM(models.ptr(), i), 1);
        steal(PyObject_CallMethodObjArgs(model, kClose.get(), nullptr));
    }
}

void Env_dispose(Env& env) {
    if (env.cenv == Py_None || !env.owner) return;
    if (env.is_default) {
        if (process_exits())
            close_main_models();
        else
            ZVNmsg(env_pointer(env), "Freeing default Zelvan environment\n");
    }
    if (env.cenv != Py_None) free_handle(env);  // closing a model may have come back here
}

void Env_close(Env& env) {
    if (Py_TYPE(as_object(env)) == Env_Type) return Env_dispose(env);
    steal(PyObject_CallMethodObjArgs(as_object(env), kDispose.get(), nullptr));
}

// ---- construction

PyObject* Env_new(PyTypeObject* type, PyObject*, PyObject*) {
    PyObject* self = type->tp_alloc(type, 0);
    if (!self) throw PythonError{};
    auto& env = *reinterpret_cast<Env*>(self);
    Py_INCREF(Py_None);
    env.cenv = Py_None;
    env.owner = true;
    return self;
}

void create_handle(Env& env) {
    ZVNenv* handle = nullptr;
    const int error = ZVNemptyenvadvinternal(&handle, 0, ZVN_VERSION_MAJOR, ZVN_VERSION_MINOR, ZVN_VERSION_TECHNICAL,
                                             nullptr, nullptr, nullptr, nullptr, 0, 0, nullptr);
    replace_capsule(env, wrap_pointer(handle));
    check(error, as_object(env));
}

void set_params(Env& env, py::handle params) {
    const py::object items = steal(PyObject_CallMethodObjArgs(params.ptr(), kItems.get(), nullptr));
    for_each(items, [&](const py::object& pair) {
        const py::object item = steal(PySequence_Tuple(pair.ptr()));
        PyObject *name, *value;
        if (!PyArg_UnpackTuple(item.ptr(), "params.items()", 2, 2, &name, &value)) throw PythonError{};
        steal(PyObject_CallMethodObjArgs(as_object(env), kSetParam.get(), name, value, nullptr));
    });
}

void start(Env& env) {
    env.empty = false;
    check(ZVNstartenv(env_pointer(env)), as_object(env));
}

void Env_init(Env& env, PyObject* args, PyObject* kwargs) {
    static const Signature<5> kSignature{
        "Env", 0, {Name("logfilename"), Name("empty"), Name("params"), Name("cenv"), Name("isDefault")}};
    const auto [logfilename, empty, params, cenv, is_default] = kSignature.parse(args, kwargs);
    if (env.owner && env.cenv != Py_None) free_handle(env);  // a second __init__ starts afresh
    env.is_default = false;
    replace_capsule(env, none());
    env.owner = true;
    env.empty = false;
    if (cenv && cenv != Py_None) {
        replace_capsule(env, borrow(cenv));
        env.owner = false;
        return;
    }
    env.empty = true;
    create_handle(env);
    const CString logfile(logfilename ? file_name(logfilename) : to_str(""));
    check(ZVNsetstrparam(env_pointer(env), "LogFile", logfile), as_object(env));
    check(ZVNsetlogcallbackfuncenv(env_pointer(env), log_callback_stub, nullptr), as_object(env));
    if (params && params != Py_None) set_params(env, params);
    if (!empty || !checked(PyObject_IsTrue(empty))) start(env);
    if (is_default && checked(PyObject_IsTrue(is_default))) env.is_default = true;
}

// ---- life cycle

int Env_traverse(PyObject* self, visitproc visit, void* arg) {
    Py_VISIT(reinterpret_cast<Env*>(self)->dict);
    return visit_type(self, visit, arg);
}

int Env_clear(PyObject* self) {
    Py_CLEAR(reinterpret_cast<Env*>(self)->dict);
    return 0;
}

void Env_finalize(PyObject* self) {
    run_unraisable(self, [=] { steal(PyObject_CallMethodObjArgs(self, kClose.get(), nullptr)); });
}

void Env_dealloc(PyObject* self) {
    if (PyObject_CallFinalizerFromDealloc(self) < 0) return;
    PyObject_GC_UnTrack(self);
    auto& env = *reinterpret_cast<Env*>(self);
    if (env.weakrefs) PyObject_ClearWeakRefs(self);
    Py_CLEAR(env.dict);
    // A subclass may have a close() of its own.
    if (env.owner && env.cenv != Py_None) run_unraisable(nullptr, [&] { free_handle(env); });
    Py_CLEAR(env.cenv);
    free_instance(self, Env_Type);
}

py::object Env_start(Env& env) {
    env.empty = false;
    if (const int error = ZVNstartenv(env_pointer(env))) {
        env.empty = true;
        raise_zelvan(error, as_object(env));
    }
    return borrow(as_object(env));
}

py::object Env_enter(py::handle self) { return borrow(self); }

py::object Env_exit(py::handle self, Args) {
    steal(PyObject_CallMethodObjArgs(self.ptr(), kClose.get(), nullptr));
    return boolean(false);
}

// ---- messages and reports

py::object Env_repr(Env& env) {
    if (env.cenv == Py_None) return to_str("<zelvanpy.Env, invalid or closed state>");
    return steal(PyUnicode_FromFormat("<zelvanpy.Env, %U>", param_changes(env).ptr()));
}

py::object Env_getCommStats(Env& env) {
    static const char* const kKeys[6] = {"recvtime", "recvbytes", "recvmsgs", "sendtime", "sendbytes", "sendmsgs"};
    double figures[6] = {-1.0, -1.0, -1.0, -1.0, -1.0, -1.0};
    ZVNgetcommstats(env_pointer(env), &figures[0], &figures[1], &figures[2], &figures[3], &figures[4], &figures[5]);
    const py::object result = steal(PyDict_New());
    for (int i = 0; i < 6; ++i)
        checked(PyDict_SetItemString(result.ptr(), kKeys[i], steal(PyFloat_FromDouble(figures[i])).ptr()));
    return result;
}

PyMethodDef methods[] = {
    {"start", method<Env_start>, METH_NOARGS,
     "start($self, /)\n--\n\n"
     "Start an environment that was created with `empty=True`, and return it.\n\n"
     "Raises ZelvanError when its log file can't be opened or the environment is closed; it then stays unstarted."},
    {"dispose", method<Env_dispose>, METH_NOARGS,
     "dispose($self, /)\n--\n\n"
     "Free the environment. Models made on it stay usable. A second call does nothing, and so does a call on\n"
     "the environment of a model, which the model frees."},
    {"close", method<Env_close>, METH_NOARGS, "close($self, /)\n--\n\nThe same as `dispose()`."},
    {"__enter__", method<Env_enter>, METH_NOARGS, "__enter__($self, /)\n--\n\nReturn the environment itself."},
    {"__exit__", method<Env_exit>, kKeywords,
     "__exit__($self, exc_type, exc_value, traceback, /)\n--\n\nClose the environment; exceptions go on."},
    {"_message", method<env_message>, METH_O,
     "_message($self, msg, /)\n--\n\nWrite a line to the log; it is printed while the environment isn't started."},
    {"_getCommStats", method<Env_getCommStats>, METH_NOARGS,
     "_getCommStats($self, /)\n--\n\nCommunication statistics of remote services, a dict of floats."},
};

PyMemberDef members[] = {
    {"_default", T_BOOL, offsetof(Env, is_default), READONLY, "whether this is the default environment"},
    {"_cenv", T_OBJECT, offsetof(Env, cenv), READONLY, "capsule of the library's handle, None when closed"},
    {"_user", T_BOOL, offsetof(Env, owner), READONLY, "whether this object created the handle and so frees it"},
    {"_empty", T_BOOL, offsetof(Env, empty), READONLY, "whether the environment is created but not started"},
    dict_at(offsetof(Env, dict)),
    weakrefs_at(offsetof(Env, weakrefs)),
    {},
};

PyGetSetDef properties[] = {
    dict_property(),
    {},
};

constexpr char doc[] =
    "Env(logfilename=\"\", empty=False, params=None, cenv=None, isDefault=False)\n--\n\n"
    "An environment: the parameters, the log and the errors of the models made on it.\n\n"
    "logfilename: file that receives the log besides the console, \"\" for none.\n"
    "empty: True leaves the environment unstarted, so that parameters can be set before `start()`.\n"
    "params: mapping of parameter names to values, set before the start.\n"
    "cenv: handle of an existing environment to wrap without owning it.\n"
    "isDefault: whether this is the default environment.\n\n"
    "Raises ZelvanError when the library refuses the log file or a parameter.\n\n"
    "    with zelvanpy.Env(params={\"OutputFlag\": 0}) as env:\n"
    "        model = zelvanpy.Model(env=env)";

// The methods of this unit and the parameter services.
PyMethodDef* all_methods() {
    static std::vector<PyMethodDef> all(std::begin(methods), std::end(methods));
    for (const PyMethodDef* def = env_param_methods; def->ml_name; ++def) all.push_back(*def);
    all.push_back({});
    return all.data();
}

}  // namespace

void init_env_type(py::module_& module) {
    PyType_Slot slots[] = {
        {Py_tp_doc, const_cast<char*>(doc)},
        {Py_tp_new, slot<Env_new>()},
        {Py_tp_init, slot<Env_init>()},
        {Py_tp_traverse, reinterpret_cast<void*>(Env_traverse)},
        {Py_tp_clear, reinterpret_cast<void*>(Env_clear)},
        {Py_tp_finalize, reinterpret_cast<void*>(Env_finalize)},
        {Py_tp_dealloc, reinterpret_cast<void*>(Env_dealloc)},
        {Py_tp_repr, slot<Env_repr>()},
        {Py_tp_methods, all_methods()},
        {Py_tp_members, members},
        {Py_tp_getset, properties},
        {},
    };
    PyType_Spec spec = {"zelvanpy.Env", sizeof(Env), 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC,
                        slots};
    Env_Type = make_type(module, spec);
}

}  // namespace zelvanpy
