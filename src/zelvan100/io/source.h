#pragma once

#include <string>
#include <string_view>

#include "core/error.h"

namespace zelvan {

// A fault in a file that is read, with the line where it was found.
class ReadError : public Error {
public:
    ReadError(int line, std::string text) : Error(ZVN_ERROR_FILE_READ, std::move(text)), line_(line) {}
    int line() const { return line_; }

private:
    int line_;
};

// A text file in memory.
struct Source {
    std::string path;
    std::string text;

    // Reads the file and refuses binary data.
    static Source read(const std::string& path);
    // `what` says what was found and what was expected.
    [[noreturn]] void fail(int line, const std::string& what) const;
    // Names of columns and rows: not too long, UTF-8, no control characters.
    void check_name(int line, std::string_view name) const;
};

// Bytes of the character of UTF-8 that the text begins with; 0 when it begins with none.
std::size_t character_length(std::string_view text);
// UTF-8 text without control characters.
bool is_clean_name(std::string_view name);
// The text in quotes for a message, cut when it is long.
std::string quoted(std::string_view text);

}  // namespace zelvan
