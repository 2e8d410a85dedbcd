#include "model_stranger.h"

#include "exception.h"

namespace zelvanpy {

namespace {

py::object text_attribute(ZVNmodel* model, const char* attribute, int index) {
    char* text = nullptr;
    const int error =
        index < 0 ? ZVNgetstrattr(model, attribute, &text) : ZVNgetstrattrelement(model, attribute, index, &text);
    return error ? py::object() : message_to_str(text);
}

// "model 'diet'", "an unnamed model"
py::object shown_model(ZVNmodel* model) {
    const py::object name = text_attribute(model, "ModelName", -1);
    if (!name || PyUnicode_GET_LENGTH(name.ptr()) == 0) return py::str("an unnamed model");
    return steal(PyUnicode_FromFormat("model '%U'", name.ptr()));
}

// "Var 'x'"; "A new Var" where the library has it not yet; "SOS 2" of a kind without names.
py::object shown_object(const Handle& handle, const HandleKind& kind) {
    static const char* const kNameAttributes[] = {"VarName", "ConstrName", nullptr, "QCName", "GenConstrName"};
    const int index = handle.cindex();
    if (index < 0 || index >= library_count(handle, kind.kind))
        return steal(PyUnicode_FromFormat("A new %s", kind.name));
    const char* attribute = kNameAttributes[static_cast<int>(kind.kind) - 1];
    const py::object name = attribute ? text_attribute(model_pointer(handle.cmodel), attribute, index) : py::object();
    return steal(name ? PyUnicode_FromFormat("%s '%U'", kind.name, name.ptr())
                      : PyUnicode_FromFormat("%s %d", kind.name, index));
}

py::object reason(const Model& model, const Handle& handle, const HandleKind& kind) {
    ZVNmodel* owner = model_pointer(handle.cmodel);
    if (!owner) return steal(PyUnicode_FromFormat("The model of the %s has been freed", kind.name));
    if (handle.cindex() < -1) return steal(PyUnicode_FromFormat("The %s was removed from the model", kind.name));
    const py::object object = shown_object(handle, kind), home = shown_model(owner);
    if (owner == model_pointer(model))
        return steal(PyUnicode_FromFormat("%U waits for the update of %U", object.ptr(), home.ptr()));
    return steal(PyUnicode_FromFormat("%U belongs to %U, this call is on another, %U", object.ptr(), home.ptr(),
                                      shown_model(model_pointer(model)).ptr()));
}

}  // namespace

void refuse_stranger(const Model& model, const Handle& handle, int code, const char* text) {
    const py::object object = borrow(reinterpret_cast<PyObject*>(const_cast<Handle*>(&handle)));
    raise_zelvan(code, text, code, reason(model, handle, *find_handle_kind(object.ptr())));
}

}  // namespace zelvanpy
