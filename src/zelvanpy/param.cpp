#include "param.h"

#include <string>
#include <vector>

#include "exception.h"
#include "pyargs.h"
#include "pynearest.h"
#include "pytype.h"
#include "zelvan.h"

namespace zelvanpy {

namespace {

constexpr int kInt = 1, kDouble = 2, kString = 3;  // the library's parameter types
constexpr unsigned kSilent = 16, kOpaque = 32;

const Name kUpper("upper"), kEnv("_env");

py::object upper(py::handle text) { return steal(PyObject_CallMethodObjArgs(text.ptr(), kUpper.get(), nullptr)); }

py::object param_name(Env& env, int i) {
    char* name = nullptr;
    check(ZVNgetparamname(env_pointer(env), i, &name), as_object(env));
    return to_str(name);
}

bool is_default_word(py::handle value) { return PyUnicode_Check(value.ptr()) && upper(value).equal(to_str("DEFAULT")); }

py::object to_float(double value) { return steal(PyFloat_FromDouble(python_double(value))); }

py::object string_value(ZVNenv* env, const char* name) {
    char buffer[ZVN_MAX_STRLEN] = "";
    int length = 0;
    ZVNgetlongstrparam(env, name, buffer, ZVN_MAX_STRLEN, &length);
    if (length < ZVN_MAX_STRLEN) return to_str(buffer);
    std::vector<char> whole(static_cast<std::size_t>(length) + 1);
    ZVNgetlongstrparam(env, name, whole.data(), length + 1, &length);
    return to_str(whole.data());
}

// The current value alone; empty for an unknown name.
py::object param_value(ZVNenv* env, const char* name) {
    switch (ZVNgetparamtype(env, name)) {
        case kInt: {
            int value = 0;
            ZVNgetintparaminfo(env, name, &value, nullptr, nullptr, nullptr);
            return steal(PyLong_FromLong(value));
        }
        case kDouble: {
            double value = 0.0;
            ZVNgetdblparaminfo(env, name, &value, nullptr, nullptr, nullptr);
            return to_float(value);
        }
        case kString:
            return string_value(env, name);
        default:
            return {};
    }
}

// ---- setting

// `info` is a tuple of param_info: the value goes to the environment by the type in it.
void set_one(Env& env, py::handle info, py::handle value) {
    const CString name(PyTuple_GET_ITEM(info.ptr(), 0));
    PyObject* type = PyTuple_GET_ITEM(info.ptr(), 1);
    const std::string what = std::string("Value of parameter '") + name.get() + "'";
    // The handle is read behind the conversion, which may run code that closes the environment.
    const auto set = [&](auto call, const auto& converted) {
        check(call(env_pointer(env), name.get(), converted), as_object(env));
    };
    if (type == reinterpret_cast<PyObject*>(&PyLong_Type))
        set(ZVNsetintparam, to_int(value, what.c_str()));
    else if (type == reinterpret_cast<PyObject*>(&PyFloat_Type))
        set(ZVNsetdblparam, to_double(value, what.c_str()));
    else
        set(ZVNsetstrparam, CString(file_name(value)));
}

const char* why_closed(const Env& env) {
    return env.cenv == Py_None ? "The environment has been closed" : "The model of the parameters has been freed";
}

void require_open(Env& env) {
    if (!env_pointer(env)) raise_zelvan(-1, "Invalid Environment", -1, to_str(why_closed(env)));
}

// The info of the one parameter that `name` resolves to; otherwise a line to the log, and empty.
py::object resolve(Env& env, py::handle name) {
    const py::object names = param_list(env, name);
    const Py_ssize_t num = PyList_GET_SIZE(names.ptr());
    if (num > 1) {
        env_message(env, steal(PyUnicode_FromFormat("Matching parameters: %S", names.ptr())));
        return {};
    }
    if (num == 0) {
        const py::object hint = param_hint(env, name);
        env_message(env, no_matching_params(name));
        if (hint) env_message(env, hint);
        return {};
    }
    PyObject* real = PyList_GET_ITEM(names.ptr(), 0);
    py::object info = param_info(env, real);
    if (info.is_none()) raise_zelvan(0, steal(PyUnicode_FromFormat("Unknown parameter %U", real)));
    return info;
}

// The line for the log; made before the work, as it refuses a name that is no str.
py::object named_file(const char* start, py::handle filename) {
    return steal(PyUnicode_Concat(to_str(start).ptr(), filename.ptr()));
}

bool is_default_env(Env& env) { return default_env(false).ptr() == as_object(env); }

// Runs body(environment of the model) for every model in __main__.
template <class Body>
void for_main_models(Body body) {
    const py::object models = main_models();
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(models.ptr()); ++i) {
        PyObject* const model = PyTuple_GET_ITEM(PyList_GET_ITEM(models.ptr(), i), 1);
        const py::object env = steal(PyObject_GetAttr(model, kEnv.get()));
        if (is_env(env)) body(*reinterpret_cast<Env*>(env.ptr()));
    }
}

}  // namespace

py::object param_hint(Env& env, py::handle name) {
    NearestName nearest(name);
    for (int i = 0, num = ZVNgetnumparams(env_pointer(env)); i < num; ++i) {
        char* known = nullptr;
        if (!ZVNgetparamname(env_pointer(env), i, &known)) nearest.offer(known);
    }
    return nearest.hint();
}

py::object no_matching_params(py::handle name) {
    const py::object quoted = steal(PyUnicode_Concat(to_str("No parameters matching '").ptr(), name.ptr()));
    return steal(PyUnicode_Concat(quoted.ptr(), to_str("' found").ptr()));
}

py::object param_list(Env& env, py::handle name) {
    py::object found = steal(PyList_New(0));
    if (!PyUnicode_Check(name.ptr())) return found;
    ZVNenv* const handle = env_pointer(env);
    if (ZVNgetparamtype(handle, CString(name)) >= 0) {
        checked(PyList_Append(found.ptr(), name.ptr()));
        return found;
    }
    const py::object pattern = upper(name);
    const py::object match = py::module_::import("fnmatch").attr("fnmatch");
    for (int i = 0, num = ZVNgetnumparams(handle); i < num; ++i) {
        const py::object real = param_name(env, i);
        const py::object matches =
            steal(PyObject_CallFunctionObjArgs(match.ptr(), upper(real).ptr(), pattern.ptr(), nullptr));
        if (checked(PyObject_IsTrue(matches.ptr()))) checked(PyList_Append(found.ptr(), real.ptr()));
    }
    return found;
}

py::object param_info(Env& env, py::handle paramname) {
    const CString name(paramname);
    ZVNenv* const handle = env_pointer(env);
    unsigned flags = 0;
    ZVNgetparamflags(handle, name, &flags);
    const auto tuple = [&](PyTypeObject& type, const py::object& value, const py::object& minimum,
                           const py::object& maximum, const py::object& deflt) {
        return steal(Py_BuildValue("NOOOOOI", bytes_to_string(paramname).release().ptr(), &type, value.ptr(),
                                   minimum.ptr(), maximum.ptr(), deflt.ptr(), flags));
    };
    switch (ZVNgetparamtype(handle, name)) {
        case kInt: {
            int v[4] = {};
            ZVNgetintparaminfo(handle, name, &v[0], &v[1], &v[2], &v[3]);
            const auto integer = [](int value) { return steal(PyLong_FromLong(value)); };
            return tuple(PyLong_Type, integer(v[0]), integer(v[1]), integer(v[2]), integer(v[3]));
        }
        case kDouble: {
            double v[4] = {};
            ZVNgetdblparaminfo(handle, name, &v[0], &v[1], &v[2], &v[3]);
            return tuple(PyFloat_Type, to_float(v[0]), to_float(v[1]), to_float(v[2]), to_float(v[3]));
        }
        case kString: {
            char deflt[ZVN_MAX_STRLEN] = "";
            ZVNgetstrparaminfo(handle, name, nullptr, deflt);
            const py::object empty = to_str("");
            return tuple(PyUnicode_Type, string_value(handle, name), empty, empty, to_str(deflt));
        }
        default:
            return none();
    }
}

py::object public_param_info(Env& env, py::handle name) {
    const py::object info = param_info(env, name);
    if (info.is_none()) {
        const py::object hint = param_hint(env, name);
        PyErr_Format(PyExc_TypeError,
                     hint ? "There is no parameter named '%S'. %S" : "There is no parameter named '%S'", name.ptr(),
                     hint.ptr());
        throw PythonError{};
    }
    return steal(PyTuple_GetSlice(info.ptr(), 0, 6));
}

void env_set_param(Env& env, py::handle name, py::handle value) {
    require_open(env);
    const py::object info = resolve(env, name);
    if (!info) return;
    const py::object chosen = borrow(is_default_word(value) ? PyTuple_GET_ITEM(info.ptr(), 5) : value.ptr());
    set_one(env, info, chosen);
    if (is_default_env(env)) for_main_models([&](Env& of_model) { set_one(of_model, info, chosen); });
}

void env_fix_tune_param(Env& env, py::handle name) {
    require_open(env);
    const py::object info = resolve(env, name);
    if (!info) return;
    const CString real(PyTuple_GET_ITEM(info.ptr(), 0));
    check(ZVNfixtuneparam(env_pointer(env), real), as_object(env));
    if (is_default_env(env)) for_main_models([&](Env& of_model) { ZVNfixtuneparam(env_pointer(of_model), real); });
}

void env_reset_params(Env& env) {
    require_open(env);
    env_message(env, to_str("Reset all parameters"));
    check(ZVNresetparams(env_pointer(env)), as_object(env));
    const py::object main_env = default_env(false);
    if (is_interactive() && !main_env.is_none())
        env_set_param(*reinterpret_cast<Env*>(main_env.ptr()), to_str("LogFile"), to_str("zelvan.log"));
    if (is_default_env(env)) {
        for_main_models([](Env& of_model) { ZVNresetparams(env_pointer(of_model)); });
        env_message(env, to_str("Reset all parameters to their default values"));
    }
}

void env_read_params(Env& env, py::handle name) {
    const py::object filename = file_name(name);
    const py::object line = named_file("Read parameters from file ", filename);
    check(ZVNreadparams(env_pointer(env), CString(filename)), as_object(env));
    env_message(env, line);
}

void env_write_params(Env& env, py::handle name) {
    const py::object filename = file_name(name);
    const py::object line = named_file("Wrote non-default parameter settings to file ", filename);
    check(ZVNwriteparams(env_pointer(env), CString(filename)), as_object(env));
    env_message(env, line);
}

py::object param_changes(Env& env) {
    const py::object shown = steal(PyList_New(0));
    for (int i = 0, num = ZVNgetnumparams(env_pointer(env)); i < num; ++i) {
        const py::object name = param_name(env, i);
        const py::object info = param_info(env, name);
        PyObject* value = PyTuple_GET_ITEM(info.ptr(), 2);
        const unsigned long flags = PyLong_AsUnsignedLong(PyTuple_GET_ITEM(info.ptr(), 6));
        if ((flags & kSilent) || !checked(PyObject_RichCompareBool(value, PyTuple_GET_ITEM(info.ptr(), 5), Py_NE)))
            continue;
        const py::object pair = flags & kOpaque ? steal(PyUnicode_FromFormat("%U=(user-defined)", name.ptr()))
                                                : steal(PyUnicode_FromFormat("%U=%S", name.ptr(), value));
        checked(PyList_Append(shown.ptr(), pair.ptr()));
    }
    if (PyList_GET_SIZE(shown.ptr()) == 0) return to_str("No parameter changes");
    const py::object joined = steal(PyUnicode_Join(to_str(", ").ptr(), shown.ptr()));
    return steal(PyUnicode_FromFormat("Parameter changes: %U", joined.ptr()));
}

// ---- methods of Env

namespace {

py::object Env_getParamInfo(Env& env, py::handle name) { return param_info(env, name); }

void Env_setParam(Env& env, Args args) {
    static const Signature<2> kSignature{"setParam", 2, {Name("paramname"), Name("newval")}};
    const auto [name, value] = kSignature.parse(args);
    env_set_param(env, name, value);
}

py::handle parse_one(const Signature<1>& signature, const Args& args) { return signature.parse(args)[0]; }

void Env_fixTuneParam(Env& env, Args args) {
    static const Signature<1> kSignature{"fixTuneParam", 1, {Name("paramname")}};
    env_fix_tune_param(env, parse_one(kSignature, args));
}

void Env_readParams(Env& env, Args args) {
    static const Signature<1> kSignature{"readParams", 1, {Name("filename")}};
    env_read_params(env, parse_one(kSignature, args));
}

void Env_writeParams(Env& env, Args args) {
    static const Signature<1> kSignature{"writeParams", 1, {Name("filename")}};
    env_write_params(env, parse_one(kSignature, args));
}

}  // namespace

PyMethodDef env_param_methods[] = {
    {"_paramlist", method<param_list>, METH_O,
     "_paramlist($self, paramname, /)\n--\n\nNames of the parameters that a name or wildcard pattern stands for."},
    {"_getParamInfo", method<Env_getParamInfo>, METH_O,
     "_getParamInfo($self, paramname, /)\n--\n\n"
     "(name, type, value, minimum, maximum, default, flags) of a parameter, None for an unknown name."},
    {"setParam", method<Env_setParam>, kKeywords,
     "setParam($self, paramname, newval)\n--\n\n"
     "Set a parameter. The name is taken in any letter case and may hold the wildcards * and ?; the parameter is\n"
     "set only where it resolves to exactly one, otherwise a line in the log tells what it matches. The word\n"
     "\"default\" restores the default. On the default environment, models found in __main__ are set as well.\n\n"
     "Raises ZelvanError for a value that is out of range and for a closed environment, TypeError or\n"
     "OverflowError for one that is no number or too large."},
    {"fixTuneParam", method<Env_fixTuneParam>, kKeywords,
     "fixTuneParam($self, paramname)\n--\n\n"
     "Keep the current value of a parameter out of tuning. Names as for `setParam`.\n\n"
     "Raises ZelvanError for a closed environment."},
    {"resetParams", method<env_reset_params>, METH_NOARGS,
     "resetParams($self, /)\n--\n\n"
     "Give all parameters their default values. On the default environment, also those of the models in __main__.\n\n"
     "Raises ZelvanError for a closed environment."},
    {"readParams", method<Env_readParams>, kKeywords,
     "readParams($self, filename)\n--\n\n"
     "Set the parameters that a .prm file lists.\n\n"
     "Raises ZelvanError when the file can't be read or holds a fault; nothing is set then."},
    {"writeParams", method<Env_writeParams>, kKeywords,
     "writeParams($self, filename)\n--\n\n"
     "Write the parameters that differ from their defaults to a .prm file.\n\n"
     "Raises ZelvanError when the file can't be written."},
    {},
};

// ---- ParamClass

namespace {

struct Params {
    PyObject_HEAD PyObject* env;
    PyObject* dict;
};

PyTypeObject* ParamClass_Type;
const Name kDir("__dir__");

// The environment, held: a second __init__ may replace it while code runs.
class ParamsEnv {
public:
    explicit ParamsEnv(const Params& params) : env_(borrow(params.env)) {
        if (!env_) raise_zelvan(-1, "Invalid Environment");
    }
    operator Env&() const { return *reinterpret_cast<Env*>(env_.ptr()); }

private:
    py::object env_;
};

void ParamClass_init(Params& self, PyObject* args, PyObject* kwargs) {
    static const Signature<1> kSignature{"ParamClass", 1, {Name("env")}};
    const py::handle env = kSignature.parse(args, kwargs)[0];
    if (!is_env(env)) raise(PyExc_TypeError, "Argument 'env' must be an Env");
    const py::object old = py::reinterpret_steal<py::object>(self.env);
    self.env = borrow(env).release().ptr();
}

// The library would stop at a NUL.
bool holds_nul(PyObject* text) {
    return PyUnicode_Check(text) && PyUnicode_FindChar(text, 0, 0, PyUnicode_GET_LENGTH(text), 1) >= 0;
}

PyObject* value_of(Params& self, PyObject* name) {
    const ParamsEnv env(self);
    py::object value = holds_nul(name) ? py::object() : param_value(env_pointer(env), CString(name));
    if (!value) {
        const py::object text = steal(PyUnicode_FromFormat("No parameter named '%S'", name));
        if (!env_pointer(env)) raise(PyExc_AttributeError, text, to_str(why_closed(env)));
        if (const py::object hint = param_hint(env, name)) raise(PyExc_AttributeError, text, hint);
        raise(PyExc_AttributeError, text);
    }
    return value.release().ptr();
}

// All names of the class begin with an underscore, so other names are parameters, unless a user put them
// into the instance dictionary by hand.
PyObject* ParamClass_getattro(Params& self, PyObject* name) {
    auto* object = reinterpret_cast<PyObject*>(&self);
    if (!PyUnicode_Check(name)) return PyObject_GenericGetAttr(object, name);  // which refuses it
    if (Py_TYPE(object) == ParamClass_Type && !is_underscored(name)) {
        if (!self.dict) return value_of(self, name);
        const py::object fields = borrow(self.dict);  // a comparison of keys may run code that replaces it
        if (PyObject* found = PyDict_GetItemWithError(fields.ptr(), name)) return borrow(found).release().ptr();
        if (PyErr_Occurred()) throw PythonError{};
        return value_of(self, name);
    }
    if (PyObject* found = PyObject_GenericGetAttr(object, name)) return found;
    if (!PyErr_ExceptionMatches(PyExc_AttributeError)) throw PythonError{};
    PyErr_Clear();
    return value_of(self, name);
}

int ParamClass_setattro(Params& self, PyObject* name, PyObject* value) {
    if (!value || !PyUnicode_Check(name))
        return PyObject_GenericSetAttr(reinterpret_cast<PyObject*>(&self), name, value);
    if (!is_underscored(name)) {
        env_set_param(ParamsEnv(self), name, value);
        return 0;
    }
    const py::object fields = steal(PyObject_GenericGetDict(reinterpret_cast<PyObject*>(&self), nullptr));
    return PyDict_SetItem(fields.ptr(), name, value);
}

PyObject* ParamClass_getattr(Params& self, py::handle name) { return value_of(self, name.ptr()); }

py::object ParamClass_dir(Params& self) {
    auto* object = reinterpret_cast<PyObject*>(&self);
    const py::object names = steal(PySet_New(steal(PyObject_Dir(reinterpret_cast<PyObject*>(Py_TYPE(object)))).ptr()));
    const py::object fields = borrow(self.dict);
    const py::object keys = fields ? steal(PyDict_Keys(fields.ptr())) : steal(PyList_New(0));
    const py::object params = param_list(ParamsEnv(self), to_str("*"));
    for (const py::object& list : {keys, params})
        for (Py_ssize_t i = 0; i < PyList_GET_SIZE(list.ptr()); ++i)
            checked(PySet_Add(names.ptr(), PyList_GET_ITEM(list.ptr(), i)));
    py::object sorted = steal(PySequence_List(names.ptr()));
    checked(PyList_Sort(sorted.ptr()));
    return sorted;
}

py::object ParamClass_getChangeList(Params& self) { return param_changes(ParamsEnv(self)); }

py::object ParamClass_repr(Params& self) {
    return steal(PyUnicode_FromFormat("<zelvanpy.ParamClass: %U>", param_changes(ParamsEnv(self)).ptr()));
}

int ParamClass_traverse(PyObject* self, visitproc visit, void* arg) {
    auto* params = reinterpret_cast<Params*>(self);
    Py_VISIT(params->env);
    Py_VISIT(params->dict);
    return visit_type(self, visit, arg);
}

int ParamClass_clear(PyObject* self) {
    auto* params = reinterpret_cast<Params*>(self);
    Py_CLEAR(params->env);
    Py_CLEAR(params->dict);
    return 0;
}

void ParamClass_dealloc(PyObject* self) {
    PyObject_GC_UnTrack(self);
    ParamClass_clear(self);
    free_instance(self, ParamClass_Type);
}

PyMethodDef params_methods[] = {
    {"__getattr__", method<ParamClass_getattr>, METH_O,
     "__getattr__($self, name, /)\n--\n\nValue of a parameter. Raises AttributeError for an unknown name."},
    {"__dir__", method<ParamClass_dir>, METH_NOARGS, "__dir__($self, /)\n--\n\nNames of all parameters and fields."},
    {"_getChangeList", method<ParamClass_getChangeList>, METH_NOARGS,
     "_getChangeList($self, /)\n--\n\nText that lists the parameters that differ from their defaults."},
    {},
};

PyMemberDef params_members[] = {
    dict_at(offsetof(Params, dict)),
    {},
};

PyGetSetDef params_properties[] = {
    dict_property(),
    {},
};

constexpr char params_doc[] =
    "ParamClass(env)\n--\n\n"
    "The parameters of an environment as attributes: `model.Params.MIPGap` reads one, an assignment sets it as\n"
    "`setParam` does. Names are taken in any letter case.\n\n"
    "Raises AttributeError on reading an unknown name.";

PyType_Slot params_slots[] = {
    {Py_tp_doc, const_cast<char*>(params_doc)},
    {Py_tp_init, slot<ParamClass_init>()},
    {Py_tp_getattro, slot<ParamClass_getattro>()},
    {Py_tp_setattro, slot<ParamClass_setattro>()},
    {Py_tp_repr, slot<ParamClass_repr>()},
    {Py_tp_traverse, reinterpret_cast<void*>(ParamClass_traverse)},
    {Py_tp_clear, reinterpret_cast<void*>(ParamClass_clear)},
    {Py_tp_dealloc, reinterpret_cast<void*>(ParamClass_dealloc)},
    {Py_tp_methods, params_methods},
    {Py_tp_members, params_members},
    {Py_tp_getset, params_properties},
    {},
};

PyType_Spec params_spec = {"zelvanpy.ParamClass", sizeof(Params), 0,
                           Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC, params_slots};

}  // namespace

py::object new_params(py::handle env) {
    return steal(PyObject_CallFunctionObjArgs(reinterpret_cast<PyObject*>(ParamClass_Type), env.ptr(), nullptr));
}

void init_param(py::module_& module) { ParamClass_Type = make_type(module, params_spec); }

}  // namespace zelvanpy
