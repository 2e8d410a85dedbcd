#include "exception.h"

#include "extern.h"
#include "pyargs.h"
#include "pytype.h"

namespace zelvanpy {

PyObject* ZelvanError;

namespace {

const Name kErrno("errno"), kMessage("message"), kPrivateMessage("_message"), kDict("__dict__");
const Name kCenv("_cenv"), kCmodel("_cmodel");

// The classes whose message is that of the object's handle, in the order in which they are tried: the
// field, and the text for an object without a handle.
struct Source {
    const char* type;
    const Name& field;
    const char* text_without_handle;  // null: the library is asked all the same
};
const Source kSources[] = {
    {"Env", kCenv, "Failed to create environment"},
    {"Batch", kCenv, "Failed to create batch request"},
    {"Model", kCmodel, nullptr},
    {"Var", kCmodel, nullptr},
    {"Constr", kCmodel, nullptr},
    {"SOS", kCmodel, nullptr},
    {"QConstr", kCmodel, nullptr},
    {"MVar", kCmodel, nullptr},
    {"MConstr", kCmodel, nullptr},
    {"MQConstr", kCmodel, nullptr},
};

py::object text_from(const Source& source, py::handle object) {
    const py::object capsule = steal(PyObject_GetAttr(object.ptr(), source.field.get()));
    if (capsule.is_none() && source.text_without_handle) return to_str(source.text_without_handle);
    return message_to_str(&source.field == &kCenv ? ZVNgeterrormsg(env_pointer(capsule))
                                                  : ZVNgetmerrormsg(model_pointer(capsule)));
}

// The text for the second argument of ZelvanError; empty for one of no known class.
py::object text_for(py::handle argument) {
    if (PyUnicode_Check(argument.ptr())) return borrow(argument);
    for (const Source& source : kSources) {
        const py::object type = module_class(source.type);
        if (type && checked(PyObject_IsInstance(argument.ptr(), type.ptr()))) return text_from(source, argument);
    }
    return {};
}

void ZelvanError_init(py::handle self, PyObject* args, PyObject* kwargs) {
    static const Signature<2> kSignature{"ZelvanError", 2, {Name("errno"), Name("argument")}};
    const auto [code, argument] = kSignature.parse(args, kwargs);
    checked(PyObject_SetAttr(self.ptr(), kErrno.get(), code));
    if (py::object text = text_for(argument)) checked(PyObject_SetAttr(self.ptr(), kMessage.get(), text.ptr()));
}

py::object get_message(py::handle self) {
    if (py::object text = find_attribute(self, kPrivateMessage)) return text;
    const py::object code = steal(PyObject_GetAttr(self.ptr(), kErrno.get()));
    return steal(PyUnicode_FromFormat("Error code %S", code.ptr()));
}

void set_message(py::handle self, py::handle message) {
    checked(PyObject_SetAttr(self.ptr(), kPrivateMessage.get(), message.ptr()));
}

void set_message_property(py::handle self, py::handle message, void*) { set_message(self, message); }

py::object ZelvanError_str(py::handle self) {
    const py::object message = steal(PyObject_GetAttr(self.ptr(), kMessage.get()));
    return steal(PyObject_Str(message.ptr()));
}

// The object that an error came from can't be pickled, its text can.
py::object ZelvanError_reduce(py::handle self) {
    const py::object code = steal(PyObject_GetAttr(self.ptr(), kErrno.get()));
    const py::object message = steal(PyObject_GetAttr(self.ptr(), kMessage.get()));
    const py::object fields = steal(PyObject_GetAttr(self.ptr(), kDict.get()));
    return steal(Py_BuildValue("O(OO)O", Py_TYPE(self.ptr()), code.ptr(), message.ptr(), fields.ptr()));
}

PyMethodDef methods[] = {
    {"_get_message", method<get_message>, METH_NOARGS, "_get_message($self, /)\n--\n\nThe text of the error."},
    {"_set_message", method<set_message>, METH_O, "_set_message($self, message, /)\n--\n\nReplace the text."},
    {"__reduce__", method<ZelvanError_reduce>, METH_NOARGS, "__reduce__($self, /)\n--\n\nPickle as code and text."},
    {},
};

PyGetSetDef properties[] = {
    {"message", getter_of<get_message>, slot_function<set_message_property>, "The text of the error (str).", nullptr},
    {},
};

PyType_Slot slots[] = {
    {Py_tp_doc, const_cast<char*>("Zelvan exception class")},
    {Py_tp_init, slot<ZelvanError_init>()},
    {Py_tp_str, slot<ZelvanError_str>()},
    {Py_tp_methods, methods},
    {Py_tp_getset, properties},
    {},
};

PyType_Spec spec = {"zelvanpy.ZelvanError", 0, 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE, slots};

}  // namespace

namespace {

py::object new_error(int code, py::handle text_or_object) {
    return steal(PyObject_CallFunction(ZelvanError, "iO", code, text_or_object.ptr()));
}

}  // namespace

void raise_zelvan(int code, py::handle text, int cause_code, py::handle cause) {
    raise_from(new_error(code, text), new_error(cause_code, cause));
}

void raise_zelvan(int code, const char* text, int cause_code, py::handle cause) {
    raise_zelvan(code, to_str(text), cause_code, cause);
}

void raise_zelvan_from_set(int code, const char* text) {
    const py::object cause = taken_exception();
    raise_from(new_error(code, to_str(text)), cause);
}

void raise_zelvan(int code, py::handle text_or_object) {
    const py::object error = new_error(code, text_or_object);
    const py::object cmodel = code == ZVN_ERROR_NULL_ARGUMENT ? find_attribute(text_or_object, kCmodel) : py::object();
    if (cmodel && cmodel.is_none()) raise_from(error, new_error(0, to_str("Model has already been freed")));
    raise(ZelvanError, error);
}

void raise_zelvan(int code, const char* text) { raise_zelvan(code, to_str(text)); }

void init_exception(py::module_& module) {
    ZelvanError = reinterpret_cast<PyObject*>(make_type(module, spec, PyExc_Exception));
}

}  // namespace zelvanpy
