#include "io/source.h"

#include <algorithm>

#include "io/io.h"

namespace zelvan {

namespace {

// Bytes that must follow a first byte of a UTF-8 sequence; -1 for a byte that starts none.
int continuation_bytes(unsigned char first) {
    if (first < 0x80) return 0;
    if (first >= 0xC2 && first <= 0xDF) return 1;
    if (first >= 0xE0 && first <= 0xEF) return 2;
    if (first >= 0xF0 && first <= 0xF4) return 3;
    return -1;
}

// Also false for what UTF-8 forbids behind some first bytes: overlong forms and surrogates.
bool valid_second(unsigned char first, unsigned char second) {
    switch (first) {
        case 0xE0:
            return second >= 0xA0;
        case 0xED:
            return second < 0xA0;
        case 0xF0:
            return second >= 0x90;
        case 0xF4:
            return second < 0x90;
        default:
            return true;
    }
}

}  // namespace

std::size_t character_length(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    const int more = continuation_bytes(first);
    if (more < 0 || static_cast<std::size_t>(more) >= text.size()) return 0;
    if (more > 0 && !valid_second(first, static_cast<unsigned char>(text[1]))) return 0;
    for (int k = 1; k <= more; ++k)
        if ((static_cast<unsigned char>(text[k]) & 0xC0) != 0x80) return 0;
    return static_cast<std::size_t>(more) + 1;
}

bool is_clean_name(std::string_view name) {
    while (!name.empty()) {
        const auto first = static_cast<unsigned char>(name.front());
        const std::size_t length = character_length(name);
        if (first < 0x20 || first == 0x7F || length == 0) return false;
        name.remove_prefix(length);
    }
    return true;
}

Source Source::read(const std::string& path) {
    Source source{path, read_file(path)};
    const std::size_t zero = source.text.find('\0');
    if (zero != source.text.npos) {
        const auto line =
            std::count(source.text.begin(), source.text.begin() + static_cast<std::ptrdiff_t>(zero), '\n');
        source.fail(static_cast<int>(line) + 1, "binary data, expected a text file");
    }
    return source;
}

void Source::fail(int line, const std::string& what) const {
    throw ReadError(line, "File '" + path + "', line " + std::to_string(line) + ": " + what);
}

void Source::check_name(int line, std::string_view name) const {
    if (name.size() > ZVN_MAX_NAMELEN)
        fail(line, "name " + quoted(name) + " is longer than " + std::to_string(ZVN_MAX_NAMELEN) + " bytes");
    if (!is_clean_name(name)) fail(line, "unreadable name, expected UTF-8 text without control characters");
}

std::string quoted(std::string_view text) {
    constexpr std::size_t kShown = 40;
    std::string out = "'";
    for (char c : text.substr(0, kShown)) out += static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? '?' : c;
    if (text.size() > kShown) out += "...";
    // A sequence of UTF-8 cut in the middle would make the message unreadable as a whole.
    if (!is_clean_name(std::string_view(out)))
        std::replace_if(out.begin(), out.end(), [](char c) { return (c & 0x80) != 0; }, '?');
    return out + "'";
}

}  // namespace zelvan
