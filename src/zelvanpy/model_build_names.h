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
    // Names with other letters than those of ASCII are refused unless `any_letters`.
    explicit NameBuffer(bool any_letters = false) : any_letters_(any_letters) {}
    // "base[key]" for each key of a list.
    void add_indexed(py::handle base, PyObject* keys);
    // "base[i,j]" for each cell of an array in C order, "base" for one without dimensions.
    void add_indexed(py::handle base, const Py_ssize_t* dims, int ndim);
    void add(py::handle name);
    // All names so far, empty ones too.
    const std::vector<char*>& texts();
    // Null when all names are empty.
    char* const* pointers();

private:
    void close();

    std::string text_;
    std::vector<std::size_t> start_;
    std::vector<char*> pointers_;
    std::size_t begin_ = 0;
    bool any_ = false;
    bool any_letters_;
};

}  // namespace zelvanpy
