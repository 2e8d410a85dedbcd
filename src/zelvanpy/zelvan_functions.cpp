// The methods of class `zelvan`, and the functions of the module that do the same.

#include "env.h"
#include "exception.h"
#include "pyargs.h"
#include "zelvan.h"

namespace zelvanpy {

namespace {

const Name kClose("close");

// ---- class methods

void zelvan_interactive(py::handle) { set_interactive(); }

py::object zelvan_getdefaultenv(py::handle, Args args) {
    static const Signature<1> kSignature{"_getdefaultenv", 0, {Name("create")}};
    const auto [create] = kSignature.parse(args);
    return default_env(!create || checked(PyObject_IsTrue(create)));
}

py::object zelvan_getmodels(py::handle) { return main_models(); }

void dispose_default_env(py::handle) {
    const py::object env = stored_default_env();
    if (env.is_none()) return;
    steal(PyObject_CallMethodObjArgs(env.ptr(), kClose.get(), nullptr));
    store_default_env(Py_None);
}

void zelvan_cleanup(py::handle self) {
    set_process_exits();
    dispose_default_env(self);
}

py::object zelvan_version(py::handle) {
    int major = 0, minor = 0, technical = 0;
    ZVNversion(&major, &minor, &technical);
    return steal(Py_BuildValue("iii", major, minor, technical));
}

py::object zelvan_platform(py::handle) { return to_str(ZVNplatform()); }

py::object zelvan_iscontainer(py::handle) { return steal(PyLong_FromLong(ZVNisContainer())); }

const char* const kUnreadable = "Unable to read model";

py::object read_model(py::handle modelname, py::handle env) {
    const py::object file = matching_file(modelname);
    if (!file) {
        const py::object reason = steal(PyUnicode_FromFormat("No file matching '%S' found", modelname.ptr()));
        print_line(reason);
        raise_zelvan(0, kUnreadable, ZVN_ERROR_FILE_READ, reason);
    }
    const py::object uenv = env && !env.is_none() ? borrow(env) : default_env();
    if (!is_env(uenv)) raise(PyExc_TypeError, "read() argument 'env' must be an Env or None");
    ZVNmodel* model = nullptr;
    const CString path(file);  // may run code that closes the environment, so its handle is read behind it
    if (const int code = ZVNreadmodel(env_pointer(*reinterpret_cast<Env*>(uenv.ptr())), path, &model)) {
        const py::object reason = error_message(uenv);
        print_line(reason);
        raise_zelvan(0, kUnreadable, code, reason);
    }
    return steal(
        PyObject_CallFunction(module_class("Model").ptr(), "sON", "", uenv.ptr(), wrap_pointer(model).release().ptr()));
}

py::object zelvan_read(py::handle, Args args) {
    static const Signature<2> kSignature{"read", 1, {Name("modelname"), Name("env")}};
    const auto [modelname, env] = kSignature.parse(args);
    return read_model(modelname, env);
}

void zelvan_models(py::handle) {
    const py::object models = main_models();
    if (PyList_GET_SIZE(models.ptr()) == 0) return print_line(to_str("No models currently loaded"));
    print_line(to_str("Currently loaded models:"));
    const py::object print = builtin_print();
    for (py::handle pair : models) print(pair[py::int_(0)], ":", pair[py::int_(1)]);
}

PyMethodDef class_methods[] = {
    {"interactive", method<zelvan_interactive>, METH_NOARGS | METH_CLASS,
     "interactive($type, /)\n--\n\nMake the default environment log to the file zelvan.log."},
    {"_getdefaultenv", method<zelvan_getdefaultenv>, kKeywords | METH_CLASS,
     "_getdefaultenv($type, create=True)\n--\n\n"
     "The default environment. When there is none, it is created, or None with `create=False`."},
    {"_getmodels", method<zelvan_getmodels>, METH_NOARGS | METH_CLASS,
     "_getmodels($type, /)\n--\n\nList of (name, model) pairs found in __main__."},
    {"_cleanup", method<zelvan_cleanup>, METH_NOARGS | METH_STATIC,
     "_cleanup()\n--\n\nThe exit hook: close the default environment and the models found in __main__."},
    {"version", method<zelvan_version>, METH_NOARGS | METH_CLASS,
     "version($type, /)\n--\n\nVersion of the library: (major, minor, technical)."},
    {"platform", method<zelvan_platform>, METH_NOARGS | METH_CLASS,
     "platform($type, /)\n--\n\nName of the platform that the library was built for."},
    {"_iscontainer", method<zelvan_iscontainer>, METH_NOARGS | METH_CLASS,
     "_iscontainer($type, /)\n--\n\nWhether the process runs in a container: 0 or 1."},
    {"read", method<zelvan_read>, kKeywords | METH_CLASS,
     "read($type, modelname, env=None)\n--\n\nRead a model from a file, see the function `read` of the module."},
    {"models", method<zelvan_models>, METH_NOARGS | METH_CLASS,
     "models($type, /)\n--\n\nPrint the models found in __main__."},
    {"disposeDefaultEnv", method<dispose_default_env>, METH_NOARGS | METH_CLASS,
     "disposeDefaultEnv($type, /)\n--\n\nClose the default environment, if there is one."},
    {},
};

// ---- functions of the module

py::object read(py::handle, Args args) {
    static const Signature<2> kSignature{"read", 1, {Name("filename"), Name("env")}};
    const auto [filename, env] = kSignature.parse(args);
    return read_model(filename, env);
}

void system(py::handle, Args args) {
    static const Signature<1> kSignature{"system", 1, {Name("command")}};
    const auto [command] = kSignature.parse(args);
    py::module_::import("os").attr("system")(py::handle(command));
}

PyMethodDef functions[] = {
    {"read", method<read>, kKeywords,
     "read(filename, env=None)\n--\n\n"
     "Read a model from a file (.mps, .lp, each also with .gz behind) and return it.\n\n"
     "filename: name, or a pattern with * and ? of which the first match is taken.\n"
     "env: environment for the model, None for the default one.\n\n"
     "Raises ZelvanError when no file matches or the file can't be read; the reason is printed and is its "
     "`__cause__`.\n\n"
     "    model = zelvanpy.read(\"diet.lp\")\n"
     "    model.optimize()"},
    {"models", method<zelvan_models>, METH_NOARGS, "models()\n--\n\nPrint the models found in __main__."},
    {"disposeDefaultEnv", method<dispose_default_env>, METH_NOARGS,
     "disposeDefaultEnv()\n--\n\n"
     "Close the default environment, if there is one. The next model without an environment creates a new one."},
    {"system", method<system>, kKeywords, "system(command)\n--\n\nRun a command in the shell of the system."},
    {},
};

py::object string_io() {
    try {
        return py::module_::import("StringIO").attr("StringIO");
    } catch (py::error_already_set& e) {
        if (!e.matches(PyExc_ImportError) && !e.matches(PyExc_AttributeError)) throw;
        return py::module_::import("io").attr("StringIO");
    }
}

}  // namespace

void init_zelvan_functions(py::module_& module) {
    module.attr("__modelmap") = steal(PyDict_New());
    module.attr("ZVNStringIO") = string_io();
    checked(PyModule_AddFunctions(module.ptr(), functions));
    make_zelvan_class(module, class_methods);
}

}  // namespace zelvanpy
