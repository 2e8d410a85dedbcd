#pragma once
// The nearest of several names to a misspelt one.

#include <string>

#include "pybase.h"

namespace zelvanpy {

class NearestName {
public:
    // Nothing is near to what is no str.
    explicit NearestName(py::handle wanted);
    void offer(const char* name);
    // "Did you mean TimeLimit?"; empty when nothing that was offered is near.
    py::object hint() const;

private:
    std::string wanted_;  // in lower case
    std::string best_;
    std::size_t distance_;  // of the best; before there is one, the first that is too far
};

}  // namespace zelvanpy
