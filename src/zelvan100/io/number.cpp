#include "io/number.h"

#include <charconv>
#include <cmath>

#include "core/model_data.h"

namespace zelvan {

namespace {

// from_chars tells that a number is out of range, but not on which end.
double out_of_range(std::string_view text) {
    const bool negative = text.front() == '-';
    const std::size_t exponent = text.find_first_of("eE");
    const bool tiny = exponent == text.npos ? text[negative] == '0' || text[negative] == '.'
                                            : exponent + 1 < text.size() && text[exponent + 1] == '-';
    const double magnitude = tiny ? 0.0 : kInfinity;
    return negative ? -magnitude : magnitude;
}

std::size_t parse_prefix(std::string_view text, double& value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const auto length = static_cast<std::size_t>(end - text.data());
    if (error == std::errc::result_out_of_range)
        value = out_of_range(text.substr(0, length));
    else if (error != std::errc() || std::isnan(value))
        return 0;
    if (std::isinf(value)) value = std::copysign(kInfinity, value);
    return length;
}

}  // namespace

bool parse_number(std::string_view text, double& value) {
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (!text.empty() && text.front() == '-') return false;
    }
    if (text.empty()) return false;
    const std::size_t length = parse_prefix(text, value);
    if (length == text.size()) return true;
    if (length == 0 || (text[length] != 'd' && text[length] != 'D')) return false;
    std::string with_e(text);
    with_e[length] = 'e';
    return parse_prefix(with_e, value) == with_e.size();
}

std::size_t scan_number(std::string_view text, double& value) {
    if (text.empty() || !((text.front() >= '0' && text.front() <= '9') || text.front() == '.')) return 0;
    return parse_prefix(text, value);
}

void append_number(std::string& out, double value) {
    char digits[32];
    // Whole numbers as such: "200000" is easier to read than the equally exact "2e+05".
    const bool whole = std::fabs(value) < 1e15 && value == std::trunc(value);
    const auto end = whole ? std::to_chars(digits, digits + sizeof digits, static_cast<long long>(value)).ptr
                           : std::to_chars(digits, digits + sizeof digits, value).ptr;
    out.append(digits, end);
}

}  // namespace zelvan
