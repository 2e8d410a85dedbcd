#include "zelvan.h"

#include "pytype.h"

namespace zelvanpy {

namespace {

PyObject* zelvan_class;

const Name kDefaultEnv("_defaultenv"), kExiting("_exiting"), kInteractive("_zelvan__interactive"), kCmodel("_cmodel");

py::object class_state(const Name& name) { return steal(PyObject_GetAttr(zelvan_class, name.get())); }
void set_class_state(const Name& name, py::handle value) {
    checked(PyObject_SetAttr(zelvan_class, name.get(), value.ptr()));
}
bool class_flag(const Name& name) { return checked(PyObject_IsTrue(class_state(name).ptr())); }

}  // namespace

bool process_exits() { return class_flag(kExiting); }
bool is_interactive() { return class_flag(kInteractive); }
void set_process_exits() { set_class_state(kExiting, Py_True); }
void set_interactive() { set_class_state(kInteractive, Py_True); }
py::object stored_default_env() { return class_state(kDefaultEnv); }
void store_default_env(py::handle env) { set_class_state(kDefaultEnv, env); }

py::object main_models() {
    py::object found = steal(PyList_New(0));
    const py::object model_class = module_class("Model");
    const py::object main = py::module_::import("sys").attr("modules")["__main__"];
    const py::object members = py::module_::import("inspect").attr("getmembers")(main);
    for (py::handle pair : members) {
        PyObject* const value = PyTuple_GET_ITEM(pair.ptr(), 1);
        if (PyObject_TypeCheck(value, reinterpret_cast<PyTypeObject*>(model_class.ptr())) &&
            !steal(PyObject_GetAttr(value, kCmodel.get())).is_none())
            checked(PyList_Append(found.ptr(), pair.ptr()));
    }
    return found;
}

py::object builtin_print() { return py::module_::import("builtins").attr("print"); }
void print_line(py::handle object) { builtin_print()(object); }

py::object matching_file(py::handle name) {
    py::object filename = file_name(name);
    const auto holds = [&](const char* wildcard) { return filename.attr("find")(wildcard).cast<Py_ssize_t>() >= 0; };
    if (!holds("*") && !holds("?")) return filename;
    const py::list found(py::module_::import("glob").attr("glob")(filename));
    return found.empty() ? py::object() : py::object(found[0]);
}

void make_zelvan_class(py::module_& module, PyMethodDef* methods) {
    PyType_Slot slots[] = {
        {Py_tp_doc, const_cast<char*>("State of the process: the default environment and how it is used.")},
        {Py_tp_methods, methods},
        {},
    };
    PyType_Spec spec = {"zelvanpy.zelvan", sizeof(PyObject), 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE, slots};
    zelvan_class = reinterpret_cast<PyObject*>(make_type(module, spec));
    store_default_env(Py_None);
    set_class_state(kExiting, Py_False);
    set_class_state(kInteractive, Py_False);
    py::module_::import("atexit").attr("register")(py::handle(zelvan_class).attr("_cleanup"));
}

}  // namespace zelvanpy
