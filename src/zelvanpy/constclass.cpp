#include "constclass.h"

#include <algorithm>

namespace zelvanpy {

PyTypeObject* AttrConst_Type;
PyTypeObject* ParamConst_Type;
PyTypeObject* StatusConst_Type;
PyTypeObject* CallbackClass_Type;

namespace {

int traverse(PyObject* self, visitproc visit, void* arg) {
    Py_VISIT(reinterpret_cast<ConstObject*>(self)->dict);
    return visit_type(self, visit, arg);
}

int clear(PyObject* self) {
    Py_CLEAR(reinterpret_cast<ConstObject*>(self)->dict);
    return 0;
}

void dealloc(PyObject* self) {
    PyObject_GC_UnTrack(self);
    clear(self);
    PyTypeObject* type = Py_TYPE(self);
    PyTypeObject* own = type;  // below it lie classes written in Python
    while (own->tp_dealloc != dealloc) own = own->tp_base;
    free_instance(self, own);
}

PyMemberDef members[] = {
    dict_at(offsetof(ConstObject, dict)),
    {},
};

PyGetSetDef properties[] = {
    dict_property(),
    {},
};

}  // namespace

PyTypeObject* make_const_class(py::module_& module, const char* name, const char* doc, setattrofunc setattro) {
    PyType_Slot slots[] = {
        {Py_tp_doc, const_cast<char*>(doc)},
        {Py_tp_setattro, reinterpret_cast<void*>(setattro ? setattro : PyObject_GenericSetAttr)},
        {Py_tp_traverse, reinterpret_cast<void*>(traverse)},
        {Py_tp_clear, reinterpret_cast<void*>(clear)},
        {Py_tp_dealloc, reinterpret_cast<void*>(dealloc)},
        {Py_tp_members, members},
        {Py_tp_getset, properties},
        {},
    };
    PyType_Spec spec = {name, sizeof(ConstObject), 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC,
                        slots};
    return make_type(module, spec);
}

void add_constant(PyTypeObject* type, const char* name, const py::object& value) {
    checked(PyObject_SetAttrString(reinterpret_cast<PyObject*>(type), name, value.ptr()));
}

void add_constants(PyTypeObject* type, const IntConstant* begin, const IntConstant* end, const char* prefix) {
    for (const IntConstant* c = begin; c != end; ++c)
        add_constant(type, (std::string(prefix) + c->name).c_str(), steal(PyLong_FromLong(c->value)));
}

void append_wrapped(std::string& out, std::string_view words, int indent) {
    const std::string margin(indent, ' ');
    std::size_t column = 0;
    while (!words.empty()) {
        const std::string_view word = words.substr(0, words.find(' '));
        words.remove_prefix(std::min(words.size(), word.size() + 1));
        if (column && column + 1 + word.size() > 100) {
            out += '\n';
            column = 0;
        }
        out += column ? " " : margin;
        out += word;
        column += word.size() + (column ? 1 : margin.size());
    }
    out += '\n';
}

void append_meanings(std::string& doc, const IntConstant* begin, const IntConstant* end) {
    for (const IntConstant* c = begin; c != end; ++c)
        if (c->meaning)
            doc += "    " + std::string(c->name) + " (" + std::to_string(c->value) + "): " + c->meaning + "\n";
}

}  // namespace zelvanpy
