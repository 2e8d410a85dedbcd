#include <algorithm>
#include <array>
#include <cstdint>

#include "io/letters.h"
#include "io/lp.h"
#include "io/number.h"

namespace zelvan {

namespace {

constexpr std::uint8_t kBlank = 1, kInName = 2, kStartsName = 4;

// Brackets belong to names such as x[1,2], but start none: they would hide products and squares. What
// divides terms or lines in some dialect can't be part of a name either.
constexpr std::array<std::uint8_t, 256> make_classes() {
    std::array<std::uint8_t, 256> classes{};
    for (int c = 0x21; c < 256; ++c) classes[c] = kInName | kStartsName;
    for (char c : {'+', '-', '*', '^', '<', '>', '=', ':', ';', '\\', '\x7f'}) classes[c] = 0;
    for (char c : {'[', ']', '(', ')', '/', ',', '.', '0', '1', '2', '3', '4', '5', '6', '7', '8', '9'})
        classes[c] = kInName;
    for (char c : {' ', '\t', '\n', '\v', '\f', '\r'}) classes[c] = kBlank;
    return classes;
}
constexpr auto kClasses = make_classes();

std::uint8_t class_of(char c) { return kClasses[static_cast<unsigned char>(c)]; }

struct Keyword {
    std::string_view word, second;  // `second` follows on the same line, kNumber: a number does
    LpSection section;
};
constexpr std::string_view kNumber = "0";
constexpr Keyword kKeywords[] = {
    {"minimize", "", LpSection::kMinimize},
    {"minimise", "", LpSection::kMinimize},
    {"minimum", "", LpSection::kMinimize},
    {"min", "", LpSection::kMinimize},
    {"maximize", "", LpSection::kMaximize},
    {"maximise", "", LpSection::kMaximize},
    {"maximum", "", LpSection::kMaximize},
    {"max", "", LpSection::kMaximize},
    {"subject", "to", LpSection::kSubjectTo},
    {"such", "that", LpSection::kSubjectTo},
    {"st", "", LpSection::kSubjectTo},
    {"s.t.", "", LpSection::kSubjectTo},
    {"st.", "", LpSection::kSubjectTo},
    {"objective", kNumber, LpSection::kObjective},
    {"pwlobj", "", LpSection::kPwlObjective},
    {"bounds", "", LpSection::kBounds},
    {"bound", "", LpSection::kBounds},
    {"general", "constraints", LpSection::kUnsupported},
    {"general", "constraint", LpSection::kUnsupported},
    {"generals", "", LpSection::kGenerals},
    {"general", "", LpSection::kGenerals},
    {"gens", "", LpSection::kGenerals},
    {"gen", "", LpSection::kGenerals},
    {"integers", "", LpSection::kGenerals},
    {"integer", "", LpSection::kGenerals},
    {"int", "", LpSection::kGenerals},
    {"binaries", "", LpSection::kBinaries},
    {"binary", "", LpSection::kBinaries},
    {"bin", "", LpSection::kBinaries},
    {"semi-continuous", "", LpSection::kSemiContinuous},
    {"semis", "", LpSection::kSemiContinuous},
    {"semi", "", LpSection::kSemiContinuous},
    {"sin", "", LpSection::kSemiContinuous},
    {"end", "", LpSection::kEnd},
    {"sos", "", LpSection::kSos},
    {"sos1", "", LpSection::kUnsupported},
    {"sos2", "", LpSection::kUnsupported},
    {"gencons", "", LpSection::kUnsupported},
    {"lazy", "constraints", LpSection::kUnsupported},
    {"user", "cuts", LpSection::kUnsupported},
    {"scenarios", "", LpSection::kUnsupported},
};

// Only the keyword of the objective may have a colon behind it.
bool begins_file(LpSection section) { return section == LpSection::kMinimize || section == LpSection::kMaximize; }

bool is_any_of(char c, std::string_view set) { return set.find(c) != set.npos; }

std::size_t blanks_on_line(std::string_view text) {
    std::size_t n = 0;
    while (n < text.size() && text[n] != '\n' && class_of(text[n]) == kBlank) ++n;
    return n;
}

// Keywords have signs and dots in them, which names and numbers have not.
std::string_view first_word(std::string_view text) {
    std::size_t n = 0;
    while (n < text.size() && class_of(text[n]) != kBlank && !is_any_of(text[n], ":<>=\\")) ++n;
    return text.substr(0, n);
}

}  // namespace

void LpLexer::take(std::size_t length) {
    text = rest_.substr(0, length);
    rest_.remove_prefix(length);
}

void LpLexer::shorten(std::size_t length) {
    rest_ = {text.data() + length, static_cast<std::size_t>(rest_.data() + rest_.size() - text.data()) - length};
    text = text.substr(0, length);
}

void LpLexer::skip_blanks() {
    for (;;) {
        std::size_t n = 0;
        for (; n < rest_.size() && class_of(rest_[n]) == kBlank; ++n) {
            if (rest_[n] != '\n') continue;
            ++line;
            starts_line = true;
        }
        rest_.remove_prefix(n);
        if (rest_.empty() || rest_.front() != '\\') return;
        rest_.remove_prefix(std::min(rest_.find('\n'), rest_.size()));
    }
}

void LpLexer::next() {
    starts_line = text.data() == nullptr;
    skip_blanks();
    if (rest_.empty()) {
        kind = LpToken::kEnd;
        text = rest_;
        return;
    }
    if (starts_line && read_section()) return;
    if (class_of(rest_.front()) & kStartsName) return read_name();
    if (const std::size_t length = scan_number(rest_, number)) {
        kind = LpToken::kNumber;
        return take(length);
    }
    read_operator();
}

// Sections begin a line. A keyword before an operator or a colon is a name, except for "max:".
bool LpLexer::read_section() {
    const std::string_view word = first_word(rest_);
    const std::string lower = lower_case(word);
    const auto* const first = std::find_if(std::begin(kKeywords), std::end(kKeywords),
                                           [&](const Keyword& keyword) { return keyword.word == lower; });
    for (const auto* keyword = first; keyword != std::end(kKeywords); ++keyword) {
        if (keyword->word != first->word) continue;
        std::size_t length = word.size();
        const std::size_t gap = blanks_on_line(rest_.substr(length));
        const std::string_view second = first_word(rest_.substr(length + gap));
        if (keyword->second == kNumber) {
            if (second.empty() || second[0] < '0' || second[0] > '9') continue;
        } else if (!keyword->second.empty()) {
            if (lower_case(second) != keyword->second) continue;
            length += gap + second.size();
        }
        const std::size_t after = length + blanks_on_line(rest_.substr(length));
        const char follower = after < rest_.size() ? rest_[after] : '\n';
        if (is_any_of(follower, "<>=") || (follower == ':' && !begins_file(keyword->section))) return false;
        kind = LpToken::kSection;
        section = keyword->section;
        take(length);
        if (follower == ':') rest_.remove_prefix(after + 1 - length);
        return true;
    }
    return false;
}

void LpLexer::read_name() {
    std::size_t length = 1;
    while (length < rest_.size() && (class_of(rest_[length]) & kInName)) ++length;
    kind = LpToken::kName;
    take(length);
    const std::size_t blanks = blanks_on_line(rest_);
    if (blanks == rest_.size() || rest_[blanks] != ':') return;
    kind = LpToken::kLabel;
    rest_.remove_prefix(blanks + 1);
}

void LpLexer::read_operator() {
    const char c = rest_.front();
    const char second = rest_.size() > 1 ? rest_[1] : ' ';
    switch (c) {
        case '+':
            kind = LpToken::kPlus;
            break;
        case '-':
            kind = second == '>' ? LpToken::kOther : LpToken::kMinus;
            break;
        case '*':
            kind = LpToken::kTimes;
            break;
        case '<':
        case '>':
            kind = c == '<' ? LpToken::kLess : LpToken::kGreater;
            return take(second == '=' ? 2 : 1);
        case '=':
            kind = second == '<' ? LpToken::kLess : second == '>' ? LpToken::kGreater : LpToken::kEqual;
            return take(is_any_of(second, "<=>") ? 2 : 1);
        default:
            kind = LpToken::kOther;
    }
    take(kind == LpToken::kOther && c == '-' ? 2 : 1);
}

bool is_lp_infinity(std::string_view name) {
    if (name.size() != 3 && name.size() != 8) return false;
    const std::string lower = lower_case(name);
    return lower == "inf" || lower == "infinity";
}

// Whether a name would be read as one word, were it no keyword.
static bool is_one_word(std::string_view name) {
    return !name.empty() && name.size() <= ZVN_MAX_NAMELEN && (class_of(name.front()) & kStartsName) &&
           std::all_of(name.begin(), name.end(), [](char c) { return class_of(c) & kInName; }) && is_clean_name(name);
}

bool lp_holds_label(std::string_view name) {
    const std::string lower = lower_case(name);
    return is_one_word(name) && std::none_of(std::begin(kKeywords), std::end(kKeywords), [&](const Keyword& keyword) {
               return begins_file(keyword.section) && keyword.word == lower;
           });
}

bool lp_holds_name(std::string_view name) {
    if (!is_one_word(name)) return false;
    const std::string lower = lower_case(name);
    return lower != "free" && lower != "inf" && lower != "infinity" && lower != "nan" &&
           std::none_of(std::begin(kKeywords), std::end(kKeywords),
                        [&](const Keyword& keyword) { return keyword.word == lower && keyword.second != kNumber; });
}

}  // namespace zelvan
