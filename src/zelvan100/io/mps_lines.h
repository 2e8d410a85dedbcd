#pragma once

#include <array>
#include <string_view>

#include "io/lines.h"

namespace zelvan {

// A line of an MPS file, cut into fields. In fixed form a field may hold blanks or be empty.
struct MpsLine {
    static constexpr int kMaxFields = 6;
    int number = 0;
    bool at_margin = false;  // begins in column 1, as headers of sections do
    int count = 0;           // fields; kMaxFields + 1 when there are more
    std::array<std::string_view, kMaxFields> field;
    std::string_view text;

    // The line from a field on, without blanks at its end.
    std::string_view rest(int from) const {
        const std::string_view found = text.substr(static_cast<std::size_t>(field[from].data() - text.data()));
        return found.substr(0, found.find_last_not_of(" \t\r") + 1);
    }
};

// Cuts the text of an MPS file into lines; comments and blank lines are passed over.
class MpsLines {
public:
    MpsLines(std::string_view text, bool fixed) : lines_(text), fixed_(fixed) {}
    // False at the end of the file. `codes`: lines of this section begin with the code of a type, which
    // in fixed form has columns of its own.
    bool next(MpsLine& line, bool codes);
    int number() const { return lines_.number(); }

private:
    Lines lines_;
    bool fixed_;
};

}  // namespace zelvan
