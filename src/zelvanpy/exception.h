#pragma once

#include "extern.h"

namespace zelvanpy {

extern PyObject* ZelvanError;  // the exception class

// Raises ZelvanError(code, text), or ZelvanError(code, object) whose text comes from the library.
[[noreturn]] void raise_zelvan(int code, const char* text);
// The same with another ZelvanError as __cause__.
[[noreturn]] void raise_zelvan(int code, const char* text, int cause_code, py::handle cause);
[[noreturn]] void raise_zelvan(int code, py::handle text, int cause_code, py::handle cause);
// Raises ZelvanError(code, text); the exception that is set becomes its __cause__.
[[noreturn]] void raise_zelvan_from_set(int code, const char* text);
[[noreturn]] void raise_zelvan(int code, py::handle text_or_object);
// Raises ZelvanError(code, object) unless code is 0.
inline void check(int code, py::handle object) {
    if (code) raise_zelvan(code, object);
}

}  // namespace zelvanpy
