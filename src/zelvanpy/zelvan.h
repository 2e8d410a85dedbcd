#pragma once
// Class `zelvan`: the state of the process.

#include "extern.h"

namespace zelvanpy {

// Whether the process ends, and whether zelvan.interactive() was called.
bool process_exits();
bool is_interactive();
void set_process_exits();
void set_interactive();
// zelvan._defaultenv: an Env or None, unless somebody put something else there.
py::object stored_default_env();
void store_default_env(py::handle env);
// zelvan._getmodels(): list of (name, model) pairs found in __main__
py::object main_models();
// The builtin print, and print of one object.
py::object builtin_print();
void print_line(py::handle object);
// The first file that a pattern with * or ? matches, a name without them as it is; empty when no file matches.
py::object matching_file(py::handle name);

// Makes the class with the methods given.
void make_zelvan_class(py::module_& module, PyMethodDef* methods);

}  // namespace zelvanpy
