#pragma once
// Names completed by keys: "x[1,2]".

#include <string>
#include <vector>

#include "pybase.h"

namespace zelvanpy {

// "name[key]" with the parts of the key joined by commas; "" for an empty name.
py::object index_name(py::handle name, py::handle key);

// The names of one call in one buffer, as the library takes them.
class NameBuffer {
public:
    // "base[key]" for each key of a list.
    void add_indexed(py::handle base, PyObject* keys);
    void add(py::handle name);
    // Null when all names are empty.
    char* const* pointers();

private:
    void close();

    std::string text_;
    std::vector<std::size_t> start_;
    std::vector<char*> pointers_;
    std::size_t begin_ = 0;
    bool any_ = false;
};

}  // namespace zelvanpy
