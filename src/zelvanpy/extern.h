#pragma once
// Strings and library handles on their way to and from zelvan100.

#include <string>

#include "pyargs.h"
#include "zelvan100.h"

namespace zelvanpy {

// `bytes` as they are, anything else by its `encode('UTF-8')`.
py::object string_to_bytes(py::handle text);
// `bytes` by their `decode()`, anything else as it is.
py::object bytes_to_string(py::handle bytes);
// UTF-8 text of the library as str; null gives "".
py::object to_str(const char* text);

// Message of the library as str; bytes that are no UTF-8, as files may hold them, are replaced.
py::object message_to_str(const char* text);

// A string argument for one library call: str without a copy, anything else through string_to_bytes.
class CString {
public:
    explicit CString(py::handle text);
    const char* get() const { return text_; }
    operator const char*() const { return text_; }

private:
    py::object keep_;
    const char* text_;
};

// ord(text[0]) as one byte.
char first_char(py::handle text);
// The same for an argument, which is refused by name where it has none.
char letter_argument(py::handle text, const Argument& argument, const char* wanted);
// A path (os.PathLike) as its text, anything else as it is.
py::object file_name(py::handle name);

// A capsule without name and destructor, None for null.
py::object wrap_pointer(void* pointer);
// The pointer in a capsule; null for None, for the capsule of a disposed model, and for anything that is no
// capsule, which is reported as unraisable.
void* unwrap_pointer(py::handle capsule);
// Makes unwrap_pointer answer null for this capsule from now on.
void invalidate_capsule(py::handle capsule);

inline ZVNmodel* model_pointer(py::handle capsule) { return static_cast<ZVNmodel*>(unwrap_pointer(capsule)); }
inline ZVNenv* env_pointer(py::handle capsule) { return static_cast<ZVNenv*>(unwrap_pointer(capsule)); }

// Infinities as the library has them, and as Python has them; ZVN_UNDEFINED stays.
double library_double(double value);
double python_double(double value);

// Whether the value converts to double by its __float__ protocol (no str). Leaves no exception set.
bool is_scalar(py::handle value);
// is_scalar with the value; false and no exception where it doesn't convert.
bool scalar_value(py::handle value, double& result);

// The double by __float__, or the int by __int__ (which truncates a float). Raise TypeError for an object
// without the protocol and OverflowError beyond 32 bits; `what` is named in the text.
double to_double(py::handle value, const char* what);
int to_int(py::handle value, const char* what);

// The attribute, or an empty object where there is none (AttributeError).
py::object find_attribute(py::handle object, const Name& name);

// A class of the module by its name, for units below its own; empty where there is none (yet).
py::object module_class(const char* name);

// The library's latest message for an object with _cmodel or _cenv, otherwise "".
py::object error_message(py::handle object);

}  // namespace zelvanpy
