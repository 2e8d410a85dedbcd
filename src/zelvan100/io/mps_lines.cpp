#include "io/mps_lines.h"

namespace zelvan {

namespace {

bool is_blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view trim(std::string_view text) {
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
    return text;
}

void split_free(MpsLine& line) {
    const char* at = line.text.data();
    const char* const end = at + line.text.size();
    line.count = 0;
    for (;;) {
        while (at != end && is_blank(*at)) ++at;
        if (at == end) return;
        const char* const first = at;
        while (at != end && !is_blank(*at)) ++at;
        if (line.count == MpsLine::kMaxFields) {
            ++line.count;
            return;
        }
        line.field[line.count++] = {first, static_cast<std::size_t>(at - first)};
    }
}

// Fields begin in columns 2, 5, 15, 25, 40 and 50; what stands between two fields counts to the first.
void split_fixed(MpsLine& line, bool codes) {
    constexpr std::array<std::size_t, 7> kStart{1, 4, 14, 24, 39, 49, 61};
    line.count = 0;
    for (std::size_t k = codes ? 0 : 1; k < 6 && kStart[k] < line.text.size(); ++k)
        line.field[line.count++] = trim(line.text.substr(kStart[k], kStart[k + 1] - kStart[k]));
    while (line.count > 0 && line.field[line.count - 1].empty()) --line.count;
}

}  // namespace

bool MpsLines::next(MpsLine& line, bool codes) {
    while (lines_.next(line.text)) {
        if (line.text.empty() || line.text.front() == '*') continue;
        line.number = number();
        line.at_margin = !is_blank(line.text.front());
        // Markers and tabs don't keep to the columns.
        const bool by_columns = fixed_ && !line.at_margin && line.text.find('\t') == line.text.npos &&
                                line.text.find("'MARKER'") == line.text.npos;
        if (by_columns)
            split_fixed(line, codes);
        else
            split_free(line);
        if (line.count > 0) return true;
    }
    return false;
}

}  // namespace zelvan
