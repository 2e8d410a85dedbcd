// Functions of the module for the parameters of the default environment, and the help texts.

#include <strings.h>

#include <string>

#include "constclass.h"
#include "env.h"
#include "exception.h"
#include "param.h"
#include "pyargs.h"
#include "zelvan.h"

namespace zelvanpy {

namespace {

Env& default_env_of(const py::object& env) { return *reinterpret_cast<Env*>(env.ptr()); }

// ---- forwarding

void setParam(py::handle, Args args) {
    static const Signature<2> kSignature{"setParam", 2, {Name("paramname"), Name("newvalue")}};
    const auto [name, value] = kSignature.parse(args);
    env_set_param(default_env_of(default_env()), name, value);
}

py::object getParamInfo(py::handle, Args args) {
    static const Signature<1> kSignature{"getParamInfo", 1, {Name("paramname")}};
    const auto [name] = kSignature.parse(args);
    return public_param_info(default_env_of(default_env()), name);
}

void fixTuneParam(py::handle, Args args) {
    static const Signature<1> kSignature{"fixTuneParam", 1, {Name("paramname")}};
    const auto [name] = kSignature.parse(args);
    env_fix_tune_param(default_env_of(default_env()), name);
}

void resetParams(py::handle) { env_reset_params(default_env_of(default_env())); }

void readParams(py::handle, Args args) {
    static const Signature<1> kSignature{"readParams", 1, {Name("filename")}};
    const auto [filename] = kSignature.parse(args);
    env_read_params(default_env_of(default_env()), filename);
}

void writeParams(py::handle, Args args) {
    static const Signature<1> kSignature{"writeParams", 1, {Name("filename")}};
    const auto [filename] = kSignature.parse(args);
    env_write_params(default_env_of(default_env()), filename);
}

// ---- help

constexpr char kHelp[] =
    "Top-level commands:\n"
    "  read(filename)           read a model from a file\n"
    "  models()                 list the models in __main__\n"
    "  setParam(name, value)    set a parameter\n"
    "  readParams(filename)     set the parameters that a .prm file lists\n"
    "  resetParams()            give all parameters their default values\n"
    "  paramHelp(name)          explain a parameter\n"
    "  writeParams(filename)    write the changed parameters to a .prm file\n"
    "  system(command)          run a command in the shell\n"
    "\n"
    "For more, type\n"
    "  help(Model)              models\n"
    "  help(Var)                variables\n"
    "  help(Constr)             linear constraints\n"
    "  help(Batch)              batch optimization\n"
    "  help(ZVN.attr)           attributes\n"
    "  help(ZVN.param)          parameters\n";

void help(py::handle, Args args) {
    static const Signature<1> kSignature{"help", 0, {Name("argument")}};
    const auto [argument] = kSignature.parse(args);
    if (!argument || argument == Py_None) return print_line(to_str(kHelp));
    print_line(py::handle(argument).attr("__doc__"));
}

// Parameters of services that are described elsewhere or not at all.
constexpr const char* kWithoutHelp[] = {"DistributedMIPJobs", "CloudHost", "JobID", "JSONSolDetail", "MultiObjMethod"};

// The name as it is spelled in the table of parameters.
std::string spelled(Env& env, const std::string& name) {
    for (int i = 0, num = ZVNgetnumparams(env_pointer(env)); i < num; ++i) {
        char* known = nullptr;
        if (!ZVNgetparamname(env_pointer(env), i, &known) && strcasecmp(known, name.c_str()) == 0) return known;
    }
    return name;
}

// Whether the parameter has a help text.
bool has_help(const std::string& name) {
    for (const char* without : kWithoutHelp)
        if (name == without) return false;
    return PyObject_HasAttrString(reinterpret_cast<PyObject*>(ParamConst_Type), name.c_str());
}

void append_section(std::string& text, const char* heading, const std::string& content) {
    text += std::string(text.empty() ? "  " : "\n  ") + heading + "\n";
    append_wrapped(text, content, 4);
}

std::string str_of(py::handle value) { return py::str(value); }

std::string values_section(py::handle info) {
    const auto line = [&](const char* label, int i) {
        return std::string("    ") + label + " : " + str_of(PyTuple_GET_ITEM(info.ptr(), i)) + "\n";
    };
    const bool is_text = PyTuple_GET_ITEM(info.ptr(), 1) == reinterpret_cast<PyObject*>(&PyUnicode_Type);
    return "\n  VALUES:\n" + (is_text ? "" : line("Minimum", 3) + line("Maximum", 4)) + line("Default", 5);
}

const char* type_word(py::handle info) {
    PyObject* type = PyTuple_GET_ITEM(info.ptr(), 1);
    if (type == reinterpret_cast<PyObject*>(&PyLong_Type)) return "Integer";
    return type == reinterpret_cast<PyObject*>(&PyFloat_Type) ? "Double" : "String";
}

std::string help_text(Env& env, const std::string& name) {
    const char *purpose = "", *effect = "";
    check(ZVNgetparamhelp(env_pointer(env), name.c_str(), &purpose, &effect), as_object(env));
    const py::object info = param_info(env, to_str(name.c_str()));
    std::string text;
    append_section(text, "PARAMETER NAME:", name);
    append_section(text, "TYPE:", type_word(info));
    append_section(text, "PURPOSE:", purpose);
    text += values_section(info);
    append_section(text,
                   "NOTES:", *effect ? effect : "Accepted and kept, but nothing in this version is driven by it.");
    return text;
}

void paramHelp(py::handle, Args args) {
    static const Signature<1> kSignature{"paramHelp", 0, {Name("paramname")}};
    const auto [argument] = kSignature.parse(args);
    const py::object name = argument ? borrow(argument) : none();
    const py::object env = default_env();
    const py::object names = param_list(default_env_of(env), name);
    if (name.is_none()) return print_line(py::handle(reinterpret_cast<PyObject*>(ParamConst_Type)).attr("__doc__"));
    if (PyList_GET_SIZE(names.ptr()) > 1) {
        py::module_::import("builtins").attr("print")("Matching parameters:", names);
        return;
    }
    if (PyList_GET_SIZE(names.ptr()) == 1) {
        const std::string real = spelled(default_env_of(env), CString(PyList_GET_ITEM(names.ptr(), 0)).get());
        if (has_help(real)) return print_line(to_str(help_text(default_env_of(env), real).c_str()));
    }
    const py::object text = steal(PyUnicode_Concat(to_str("No help found for parameter ").ptr(), name.ptr()));
    const bool is_known = PyList_GET_SIZE(names.ptr()) == 1;
    if (const py::object hint = is_known ? py::object() : param_hint(default_env_of(env), name))
        raise_zelvan(0, text, 0, hint);
    raise_zelvan(0, text);
}

PyMethodDef functions[] = {
    {"setParam", method<setParam>, kKeywords,
     "setParam(paramname, newvalue)\n--\n\n"
     "Set a parameter of the default environment and of the models found in __main__. Names, the word \"default\"\n"
     "and errors as for `Env.setParam`."},
    {"getParamInfo", method<getParamInfo>, kKeywords,
     "getParamInfo(paramname)\n--\n\n"
     "(name, type, value, minimum, maximum, default) of a parameter of the default environment; type is int, float\n"
     "or str.\n\n"
     "Raises TypeError for an unknown name."},
    {"fixTuneParam", method<fixTuneParam>, kKeywords,
     "fixTuneParam(paramname)\n--\n\nKeep the current value of a parameter out of tuning."},
    {"resetParams", method<resetParams>, METH_NOARGS,
     "resetParams()\n--\n\n"
     "Give all parameters of the default environment and of the models found in __main__ their default values."},
    {"readParams", method<readParams>, kKeywords,
     "readParams(filename)\n--\n\n"
     "Set the parameters that a .prm file lists, on the default environment.\n\n"
     "Raises ZelvanError when the file can't be read or holds a fault; nothing is set then."},
    {"writeParams", method<writeParams>, kKeywords,
     "writeParams(filename)\n--\n\n"
     "Write the parameters of the default environment that differ from their defaults to a .prm file.\n\n"
     "Raises ZelvanError when the file can't be written."},
    {"help", method<help>, kKeywords,
     "help(argument=None)\n--\n\nPrint what there is, or the description of a class, function or group of constants."},
    {"paramHelp", method<paramHelp>, kKeywords,
     "paramHelp(paramname=None)\n--\n\n"
     "Print type, purpose, bounds and effect of a parameter, the names that a pattern matches, or, without an\n"
     "argument, the list of all parameters.\n\n"
     "The name is taken in any letter case. Raises ZelvanError for an unknown one."},
    {},
};

}  // namespace

void init_paramhelp(py::module_& module) { checked(PyModule_AddFunctions(module.ptr(), functions)); }

}  // namespace zelvanpy
