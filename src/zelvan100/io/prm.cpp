#include "io/prm.h"

#include <charconv>
#include <string_view>

#include "core/error.h"
#include "io/io.h"
#include "io/lines.h"
#include "io/number.h"
#include "io/source.h"

namespace zelvan {

namespace {

constexpr std::string_view kBlank = " \t\r";

std::string_view trim(std::string_view s) {
    const std::size_t first = s.find_first_not_of(kBlank);
    if (first == s.npos) return {};
    return s.substr(first, s.find_last_not_of(kBlank) - first + 1);
}

// Cuts the comment off: '#' at the start or after a blank.
std::string_view without_comment(std::string_view s) {
    for (std::size_t at = s.find('#'); at != s.npos; at = s.find('#', at + 1))
        if (at == 0 || kBlank.find(s[at - 1]) != kBlank.npos) return trim(s.substr(0, at));
    return s;
}

Error syntax(const std::string& text) { return {ZVN_ERROR_FILE_READ, text}; }

std::string unquote(std::string_view s) {
    std::string value;
    std::size_t i = 1;
    for (; i < s.size() && s[i] != '"'; ++i) {
        if (s[i] == '\\' && i + 1 < s.size()) {
            ++i;
            value += s[i] == 'n' ? '\n' : s[i];
        } else {
            value += s[i];
        }
    }
    if (i >= s.size()) throw syntax("closing quote expected");
    if (!without_comment(trim(s.substr(i + 1))).empty()) throw syntax("nothing expected behind the closing quote");
    return value;
}

std::string quote_if_needed(const std::string& value) {
    if (!value.empty() && trim(value) == value && value.find_first_of("#\"\n\r") == value.npos) return value;
    std::string quoted = "\"";
    for (char c : value) {
        if (c == '"' || c == '\\') quoted += '\\';
        if (c == '\n') quoted += "\\n";
        if (c != '\n') quoted += c;
    }
    return quoted + '"';
}

template <class Number>
Number parse(std::string_view text, const char* what) {
    Number number{};
    std::string_view digits = text;
    if (digits.size() > 1 && digits[0] == '+' && digits[1] != '-') digits.remove_prefix(1);
    const auto [end, fault] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (fault != std::errc() || end != digits.data() + digits.size())
        throw syntax(std::string(what) + " expected, found " + quoted(text));
    return number;
}

void read_line(ParamValues& values, std::string_view line) {
    line = trim(line);
    if (line.empty() || line[0] == '#') return;
    const std::size_t blank = std::min(line.find_first_of(kBlank), line.size());
    const std::string name(line.substr(0, blank));
    const std::string_view value = trim(line.substr(blank));
    const int param = find_param(name);
    if (param < 0) throw Error(ZVN_ERROR_UNKNOWN_PARAMETER, "unknown parameter " + quoted(name));
    const std::string_view bare = without_comment(value);
    if (bare.empty()) throw syntax("value of parameter '" + name + "' expected");
    switch (param_spec(param).type) {
        case 1:
            return values.set_int(param, parse<int>(bare, "integer"));
        case 2:
            return values.set_dbl(param, parse<double>(bare, "number"));
        default:
            return values.set_str(param, value[0] == '"' ? unquote(value) : std::string(bare));
    }
}

std::string value_text(const ParamValues& values, int i) {
    const Param p = static_cast<Param>(i);
    const int type = param_spec(i).type;
    if (type == 1) return std::to_string(values.get_int(p));
    if (type == 3) return quote_if_needed(values.get_str(p));
    std::string text;
    append_number(text, values.get_dbl(p));
    return text;
}

}  // namespace

void read_params(Env& env, const std::string& path) {
    const Source file = Source::read(path);
    ParamValues values = env.params;
    Lines lines(file.text);
    for (std::string_view line; lines.next(line);) {
        try {
            read_line(values, line);
        } catch (const Error& e) {
            throw Error(e.code(), "File '" + path + "', line " + std::to_string(lines.number()) + ": " + e.text());
        }
    }
    env.set_params(values);
}

void write_params(const Env& env, const std::string& path) {
    const ParamValues values = env.settings();
    std::string text = "# Parameters that differ from their default\n";
    for (int i = 0; i < num_params(); ++i) {
        if (values.is_default(i)) continue;
        const ParamSpec& spec = param_spec(i);
        if (spec.flags & kOpaque)
            text += std::string("# ") + spec.name + " is set; its value is not written\n";
        else
            text += std::string(spec.name) + "  " + value_text(values, i) + "\n";
    }
    write_file(path, text);
}

}  // namespace zelvan
