#pragma once
// Arguments by position and keyword, read without building a tuple or dict.

#include <array>
#include <cstddef>

#include "pynames.h"

namespace zelvanpy {

namespace args_detail {
void parse(const char* function, const Name* names, std::size_t num, std::size_t required, const Args& args,
           PyObject** out);
void parse(const char* function, const Name* names, std::size_t num, std::size_t required, PyObject* tuple,
           PyObject* dict, PyObject** out);
}  // namespace args_detail

// An argument as messages name it: of a function (null where several share it), by keyword, and one of many values
// by its key.
struct Argument {
    const char* function;
    const char* name;
    PyObject* key = nullptr;
};
// Raises e.g. TypeError "addVars() argument 'obj' at key 'b' must be a number, not str '2,5'".
[[noreturn]] void refuse_argument(PyObject* type, const Argument& argument, const char* wanted, py::handle value);
// A value as messages show it: the type, and what a text holds.
py::object shown_value(py::handle value);
// as_double() for an argument.
double number_argument(py::handle value, const Argument& argument);

// The signature of one function: its name, its parameters, how many of them are required.
//   static const Signature<3> kAdd{"add", 1, {Name("arg1"), Name("mult"), ...}};
//   const auto [arg1, mult, ...] = kAdd.parse(args);      // null where not given
template <std::size_t N>
struct Signature {
    const char* function;
    std::size_t required;
    std::array<Name, N> names;

    std::array<PyObject*, N> parse(const Args& args) const {
        std::array<PyObject*, N> out{};
        args_detail::parse(function, names.data(), N, required, args, out.data());
        return out;
    }
    // For tp_new and tp_init; dict may be null.
    std::array<PyObject*, N> parse(PyObject* tuple, PyObject* dict) const {
        std::array<PyObject*, N> out{};
        args_detail::parse(function, names.data(), N, required, tuple, dict, out.data());
        return out;
    }
};

}  // namespace zelvanpy
