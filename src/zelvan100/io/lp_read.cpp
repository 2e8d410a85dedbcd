#include <algorithm>
#include <cmath>
#include <cstdint>

#include "io/letters.h"
#include "io/lp_reader.h"
#include "io/row_kind.h"
#include "io/sos_sets.h"

namespace zelvan {

namespace {

constexpr std::uint8_t kLowerSet = 1, kUpperSet = 2;

LpToken flipped(LpToken op) {
    return op == LpToken::kLess ? LpToken::kGreater : op == LpToken::kGreater ? LpToken::kLess : op;
}

}  // namespace

ModelData LpReader::read() {
    read_model_name();
    if (lexer_.kind != LpToken::kSection || lexer_.section > LpSection::kMaximize) unexpected("Minimize or Maximize");
    out_.sense = lexer_.section == LpSection::kMaximize ? -1 : 1;
    lexer_.next();
    objective();
    read_sections();
    settle();
    return std::move(out_);
}

// The writer leaves the name in a comment on the first line.
void LpReader::read_model_name() {
    const std::string_view text = source_.text;
    for (std::string_view lead : {"\\ Model name: ", "\\Problem name: "}) {
        if (text.substr(0, lead.size()) != lead) continue;
        std::string_view name = text.substr(lead.size(), text.find('\n') - lead.size());
        name = name.substr(0, name.find_last_not_of(" \t\r") + 1);
        source_.check_name(1, name);
        out_.name = name;
    }
}

void LpReader::read_sections() {
    for (;;) {
        if (lexer_.kind == LpToken::kEnd) unexpected("End");
        if (lexer_.kind != LpToken::kSection) unexpected("a section such as Subject To, Bounds, Generals or End");
        const LpSection section = lexer_.section;
        const std::string_view keyword = lexer_.text;
        const int line = lexer_.line;
        if (section == LpSection::kUnsupported)
            source_.fail(line, "section " + std::string(keyword) + " is not supported");
        lexer_.next();
        switch (section) {
            case LpSection::kSubjectTo:
                constraints();
                break;
            case LpSection::kObjective:
                objective_among_several();
                break;
            case LpSection::kPwlObjective:
                pwl_terms();
                break;
            case LpSection::kBounds:
                bounds();
                break;
            case LpSection::kGenerals:
                types(&LpReader::make_integer);
                break;
            case LpSection::kBinaries:
                types(&LpReader::make_binary);
                break;
            case LpSection::kSemiContinuous:
                types(&LpReader::make_semicontinuous);
                break;
            case LpSection::kSos:
                sets();
                break;
            case LpSection::kEnd:
                return;
            default:
                source_.fail(line,
                             "a second objective " + quoted(keyword) + ", expected a section such as Bounds or End");
        }
    }
}

void LpReader::expect(std::string_view text) {
    if (lexer_.kind != LpToken::kOther || lexer_.text != text) unexpected(("'" + std::string(text) + "'").c_str());
    lexer_.next();
}

void LpReader::constraints() {
    while (lexer_.kind != LpToken::kSection && lexer_.kind != LpToken::kEnd) {
        constraint();
        const bool ended = lexer_.starts_line || lexer_.kind == LpToken::kLabel || lexer_.kind == LpToken::kEnd;
        if (!ended) unexpected("a new line or a label behind the constraint");
    }
}

void LpReader::constraint() {
    std::string_view name;
    const int line = lexer_.line;
    if (lexer_.kind == LpToken::kLabel) {
        name = lexer_.text;
        source_.check_name(lexer_.line, name);
        if (!row_names_.add(name)) source_.fail(lexer_.line, "constraint " + quoted(name) + " appears twice");
        lexer_.next();
    }
    const Expression left = expression(1.0, true);
    const bool empty = !left.any && !name.empty() && at_operator();  // "c1: = 0"
    if (!left.any && !empty) unexpected("a constraint");
    const LpToken op = take_operator();
    if (empty) return one_sided(line, name, op, value("a number"));
    // A number on the left may open a range, so the expression goes on to the next operator or label.
    const Expression middle = expression(left.has_terms ? -1.0 : 1.0, !left.has_terms);
    if (!middle.any) unexpected("a number or an expression");
    if (!at_operator()) {
        const bool reversed = !left.has_terms && middle.has_terms;
        const double rhs = reversed ? left.constant - middle.constant : middle.constant - left.constant;
        return one_sided(line, name, reversed ? flipped(op) : op, rhs);
    }
    if (left.has_terms || op == LpToken::kEqual || lexer_.kind != op)
        unexpected("a new constraint; a range has a number on each side and the same operator twice");
    if (has_bracket_) source_.fail(line, "a quadratic constraint has one side only");
    lexer_.next();
    const double right = value("a number as the right side of the range");
    const bool rising = op == LpToken::kLess;
    const double lower = (rising ? left.constant : right) - middle.constant;
    const double upper = (rising ? right : left.constant) - middle.constant;
    if (lower > upper || lower >= kInfinityThreshold || upper <= -kInfinityThreshold)
        source_.fail(line, "the sides of the range exclude each other");
    close_row(name, lower, upper);
}

void LpReader::one_sided(int line, std::string_view name, LpToken op, double rhs) {
    const double right = clipped(rhs);
    if ((op != LpToken::kLess && right == kInfinity) || (op != LpToken::kGreater && right == -kInfinity))
        source_.fail(line, "the constraint has its right side on the wrong side of infinity");
    const char sense = op == LpToken::kLess ? '<' : op == LpToken::kGreater ? '>' : '=';
    if (has_bracket_) return close_quad_row(name, sense, right);
    close_row(name, 0.0, 0.0);
    out_.rows.sense.back() = sense;
    out_.rows.rhs.back() = right;
}

// The linear terms were collected as those of a row.
void LpReader::close_quad_row(std::string_view name, char sense, double rhs) {
    Rows& rows = out_.rows;
    QuadRows& quadratic = out_.qrows;
    for (auto k = static_cast<std::size_t>(rows.start.back()); k < rows.col.size(); ++k) {
        entry_[rows.col[k]] = -1;
        if (rows.val[k] == 0.0) continue;
        quadratic.col.push_back(rows.col[k]);
        quadratic.val.push_back(rows.val[k]);
    }
    rows.col.resize(rows.start.back());
    rows.val.resize(rows.start.back());
    quadratic.quad.append(take_products());
    quadratic.push_back(sense, rhs, name);
}

// Terms of one variable were added up; what is 0 then is no entry.
void LpReader::close_row(std::string_view name, double lower, double upper) {
    Rows& rows = out_.rows;
    auto to = static_cast<std::size_t>(rows.start.back());
    for (std::size_t k = to; k < rows.col.size(); ++k) {
        entry_[rows.col[k]] = -1;
        if (rows.val[k] == 0.0) continue;
        rows.col[to] = rows.col[k];
        rows.val[to++] = rows.val[k];
    }
    rows.col.resize(to);
    rows.val.resize(to);
    const RowKind kind = row_kind(lower, upper);
    rows.start.push_back(static_cast<std::int64_t>(to));
    rows.sense.push_back(kind.sense);
    rows.rhs.push_back(kind.rhs);
    rows.lower.push_back(kind.lower);
    rows.names.push_back(name);
}

int LpReader::new_column(std::string_view name) {
    const int col = col_names_.find_or_add(name);
    if (col < out_.cols.size()) return col;
    source_.check_name(lexer_.line, name);
    out_.cols.lb.push_back(0.0);
    out_.cols.ub.push_back(kInfinity);
    out_.cols.obj.push_back(0.0);
    out_.cols.type.push_back('C');
    entry_.push_back(-1);
    bound_flags_.push_back(0);
    return col;
}

int LpReader::known_column(std::string_view name) {
    const int col = col_names_.find(name);
    if (col < 0) unexpected("a variable of the objective or a constraint");
    return col;
}

bool LpReader::at_operator() const {
    return lexer_.kind == LpToken::kLess || lexer_.kind == LpToken::kGreater || lexer_.kind == LpToken::kEqual;
}

LpToken LpReader::take_operator() {
    if (!at_operator()) unexpected("<=, >= or =");
    const LpToken op = lexer_.kind;
    lexer_.next();
    return op;
}

bool LpReader::at_value() const {
    return lexer_.kind == LpToken::kNumber || lexer_.kind == LpToken::kPlus || lexer_.kind == LpToken::kMinus ||
           (lexer_.kind == LpToken::kName && is_lp_infinity(lexer_.text));
}

double LpReader::value(const char* what) {
    double sign = 1.0;
    for (; lexer_.kind == LpToken::kPlus || lexer_.kind == LpToken::kMinus; lexer_.next())
        if (lexer_.kind == LpToken::kMinus) sign = -sign;
    if (!at_value()) unexpected(what);
    const double magnitude = lexer_.kind == LpToken::kNumber ? lexer_.number : kInfinity;
    lexer_.next();
    return sign * magnitude;
}

void LpReader::bounds() {
    while (lexer_.kind != LpToken::kSection && lexer_.kind != LpToken::kEnd) bound();
}

void LpReader::bound() {
    if (at_value()) {
        const double left = value("a number");
        const LpToken op = take_operator();
        if (lexer_.kind != LpToken::kName) unexpected("a variable");
        const int col = known_column(lexer_.text);
        lexer_.next();
        set_bound(col, op, left, true);
        if (!at_operator() || lexer_.starts_line) return;
        if (lexer_.kind != op || op == LpToken::kEqual) unexpected("the same operator twice");
        lexer_.next();
        return set_bound(col, op, value("a number"), false);
    }
    if (lexer_.kind != LpToken::kName) unexpected("a bound such as 0 <= x <= 1 or x free");
    const int col = known_column(lexer_.text);
    lexer_.next();
    if (lexer_.kind == LpToken::kName && lower_case(lexer_.text) == "free") {
        lexer_.next();
        set_bound(col, LpToken::kGreater, -kInfinity, false);
        return set_bound(col, LpToken::kLess, kInfinity, false);
    }
    const LpToken op = take_operator();
    set_bound(col, op, value("a number"), false);
}

void LpReader::set_bound(int col, LpToken op, double value, bool value_first) {
    const LpToken side = value_first ? flipped(op) : op;
    const double limit = clipped(value);
    if ((side != LpToken::kLess && limit == kInfinity) || (side != LpToken::kGreater && limit == -kInfinity))
        source_.fail(lexer_.line,
                     "variable " + quoted(col_names_.name(col)) + " has a bound on the wrong side of infinity");
    if (side != LpToken::kLess) {
        out_.cols.lb[col] = limit;
        bound_flags_[col] |= kLowerSet;
    }
    if (side != LpToken::kGreater) {
        out_.cols.ub[col] = limit;
        bound_flags_[col] |= kUpperSet;
    }
}

void LpReader::types(void (LpReader::*set_type)(int col)) {
    for (; lexer_.kind == LpToken::kName; lexer_.next()) (this->*set_type)(known_column(lexer_.text));
    if (lexer_.kind != LpToken::kSection && lexer_.kind != LpToken::kEnd) unexpected("the name of a variable");
}

void LpReader::make_integer(int col) {
    char& type = out_.cols.type[col];
    if (type == 'C') type = 'I';
    if (type == 'S') type = 'N';
}

// Bounds that the file gives stay.
void LpReader::make_binary(int col) {
    char& type = out_.cols.type[col];
    type = type == 'S' || type == 'N' ? 'N' : 'B';
    if (!(bound_flags_[col] & kUpperSet)) out_.cols.ub[col] = 1.0;
}

void LpReader::make_semicontinuous(int col) {
    char& type = out_.cols.type[col];
    type = type == 'C' || type == 'S' ? 'S' : 'N';
}

// "set: S1:: x:1 y:2", where the set may have no name.
void LpReader::sets() {
    SosReader sos(source_, out_.sos);
    while (lexer_.kind == LpToken::kLabel) {
        const int line = lexer_.line;
        std::string_view name = lexer_.text, type = name;
        lexer_.next();
        if (lexer_.kind == LpToken::kLabel) {
            type = lexer_.text;
            lexer_.next();
        } else if (lexer_.text == ":") {
            name = {};
        } else {
            const double weight = value("a weight");
            if (out_.sos.size() == 0) source_.fail(line, quoted(name) + " is in no set, expected S1:: or S2:: before");
            sos.add(line, known_column(name), name, weight);
            continue;
        }
        if (!sos.begin(line, type, name)) source_.fail(line, "found " + quoted(type) + ", expected S1:: or S2::");
        expect(":");
    }
    if (lexer_.kind != LpToken::kSection && lexer_.kind != LpToken::kEnd) unexpected("a set such as a: S1:: x:1 y:2");
}

void LpReader::unexpected(const char* expected) const {
    std::string found = lexer_.kind == LpToken::kEnd ? "the file ends here" : "found " + quoted(lexer_.text);
    if (lexer_.kind == LpToken::kTimes || lexer_.text == "^")
        source_.fail(lexer_.line, found + ": quadratic terms stand in brackets, as in [ x ^ 2 + x * y ]");
    if (lexer_.text == "->") source_.fail(lexer_.line, found + ": indicator constraints are not supported");
    source_.fail(lexer_.line, found + ", expected " + expected);
}

void LpReader::settle() {
    Columns& cols = out_.cols;
    for (int j = 0; j < cols.size(); ++j) {
        cols.names.push_back(col_names_.name(j));
        if (cols.ub[j] < 0.0 && cols.lb[j] == 0.0 && !(bound_flags_[j] & kLowerSet))
            warn_("Warning: variable " + quoted(col_names_.name(j)) +
                  " has a negative upper bound; its lower bound is 0, as none is given");
    }
    cols.tags.resize(cols.size());
    out_.rows.tags.resize(out_.rows.size());
}

ModelData read_lp(const Source& source, const Warn& warn) { return LpReader(source, warn).read(); }

}  // namespace zelvan
