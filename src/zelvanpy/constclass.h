#pragma once
// Classes of constants and their tables.

#include <cstddef>
#include <string>
#include <string_view>

#include "exception.h"
#include "pytype.h"

namespace zelvanpy {

struct IntConstant {
    const char* name;
    long value;
    const char* meaning = nullptr;
};

// Names of a table from `first` on, and what they have in common.
struct NameGroup {
    const char* first;
    const char* text;
};

// Instance of a class of constants; the constants are attributes of the class.
struct ConstObject {
    PyObject_HEAD PyObject* dict;
};

// Adds a class of constants to the module. `setattro` may be null.
PyTypeObject* make_const_class(py::module_& module, const char* name, const char* doc, setattrofunc setattro);

void add_constant(PyTypeObject* type, const char* name, const py::object& value);
void add_constants(PyTypeObject* type, const IntConstant* begin, const IntConstant* end, const char* prefix = "");
template <std::size_t N>
void add_constants(PyTypeObject* type, const IntConstant (&table)[N], const char* prefix = "") {
    add_constants(type, table, table + N, prefix);
}
// Each name stands for itself.
template <std::size_t N>
void add_names(PyTypeObject* type, const char* const (&names)[N]) {
    for (const char* name : names) add_constant(type, name, steal(PyUnicode_InternFromString(name)));
}

// Words in lines of at most 100 characters, indented.
void append_wrapped(std::string& out, std::string_view words, int indent);
// Docstring that lists the names by group.
template <std::size_t N, std::size_t G>
std::string list_by_group(std::string doc, const char* const (&names)[N], const NameGroup (&groups)[G]) {
    std::size_t i = 0;
    for (std::size_t g = 0; g < G; ++g) {
        std::string list;
        for (; i < N && (g + 1 == G || std::string_view(names[i]) != groups[g + 1].first); ++i)
            list += std::string(names[i]) + ", ";
        list.resize(list.size() - 2);
        append_wrapped(doc += '\n', groups[g].text, 0);
        append_wrapped(doc, list, 4);
    }
    return doc;
}
// A line for each constant of the table that has a meaning.
void append_meanings(std::string& doc, const IntConstant* begin, const IntConstant* end);

// tp_setattro of instances that refuse assignment with the text.
template <const char* const& kText>
int refuse_assignment(PyObject* self, PyObject* name, PyObject* value) {
    if (!value) return PyObject_GenericSetAttr(self, name, nullptr);
    raise_zelvan(0, kText);
}

// The classes that ZVN gathers.
extern PyTypeObject* AttrConst_Type;
extern PyTypeObject* ParamConst_Type;
extern PyTypeObject* StatusConst_Type;
extern PyTypeObject* CallbackClass_Type;

}  // namespace zelvanpy
