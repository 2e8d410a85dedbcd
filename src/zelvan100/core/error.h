#pragma once
// The one exception of the library: a code of zelvan100.h and a sentence that names the thing at fault.
// It never leaves the library: guard() in api/guard.h turns it into a return code.

#include <exception>
#include <string>
#include <utility>

#include "zelvan100.h"

namespace zelvan {

class Error : public std::exception {
public:
    Error(int code, std::string text) : code_(code), text_(std::move(text)) {}

    int code() const { return code_; }
    const std::string& text() const { return text_; }
    const char* what() const noexcept override { return text_.c_str(); }

private:
    int code_;
    std::string text_;
};

}  // namespace zelvan
