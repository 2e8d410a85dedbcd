// Expressions of LP files, and the objectives, which consist of them.

#include <algorithm>
#include <cmath>

#include "core/clean.h"
#include "io/letters.h"
#include "io/lp_reader.h"
#include "io/objectives.h"

namespace zelvan {

void LpReader::objective() {
    if (lexer_.kind == LpToken::kLabel) {
        objective_label_ = lexer_.text;
        lexer_.next();
    }
    const Expression sum = expression(1.0, true);
    if (lexer_.kind != LpToken::kSection && lexer_.kind != LpToken::kEnd)
        unexpected("a term of the objective or Subject To");
    if (std::fabs(sum.constant) >= kInfinityThreshold)
        source_.fail(lexer_.line, "the constant of the objective is too large");
    out_.obj_constant = sum.constant;
    out_.cols.obj = take_objective();
    out_.quad_obj = take_products();
}

// The coefficients that an expression left in the row under construction, which is emptied.
std::vector<double> LpReader::take_objective() {
    Rows& rows = out_.rows;
    std::vector<double> coeff(out_.cols.size(), 0.0);
    for (auto k = static_cast<std::size_t>(rows.start.back()); k < rows.col.size(); ++k) {
        coeff[rows.col[k]] = rows.val[k];
        entry_[rows.col[k]] = -1;
    }
    rows.col.resize(rows.start.back());
    rows.val.resize(rows.start.back());
    return coeff;
}

// "Objective 1 Priority 2 Weight 0.5", then label and expression; of objective 0 these stand at the top.
void LpReader::objective_among_several() {
    std::vector<Objective>& objectives = out_.objectives;
    if (objectives.empty() && lexer_.number != 0.0) unexpected("number 0, the main objective");
    if (lexer_.number != static_cast<double>(objectives.size())) unexpected("the next number of an objective");
    lexer_.next();
    Objective objective;
    while (lexer_.kind == LpToken::kName && !lexer_.starts_line) {
        const std::string name = lower_case(lexer_.text);
        const auto* const field = std::find_if(std::begin(kObjectiveFields), std::end(kObjectiveFields),
                                               [&](const ObjectiveField& f) { return lower_case(f.name) == name; });
        if (field == std::end(kObjectiveFields)) unexpected("Priority, Weight, AbsTol or RelTol");
        const int line = lexer_.line;
        lexer_.next();
        if (!field->set(objective, value("a number")))
            source_.fail(line, "the value of " + std::string(field->name) + " is out of range");
    }
    std::string_view label = objectives.empty() ? objective_label_ : std::string_view();
    if (!objectives.empty() && lexer_.kind == LpToken::kLabel) {
        label = lexer_.text;
        lexer_.next();
    }
    source_.check_name(lexer_.line, label);
    objective.name = label;
    if (!objectives.empty()) {
        objective.constant = expression(1.0, true).constant;
        if (std::fabs(objective.constant) >= kInfinityThreshold)
            source_.fail(lexer_.line, "the constant of the objective is too large");
        if (has_bracket_) source_.fail(lexer_.line, "only the main objective can be quadratic");
        objective.coeff = SparseVector::of(take_objective());
    }
    objectives.push_back(std::move(objective));
}

void LpReader::pwl_terms() {
    while (lexer_.kind == LpToken::kLabel) {
        const int line = lexer_.line;
        const std::string_view name = lexer_.text;
        const int col = known_column(name);
        lexer_.next();
        if (!out_.pwl_obj.emplace(col, pwl_points()).second)
            source_.fail(line, "variable " + quoted(name) + " has two piecewise-linear terms");
        if (out_.cols.obj[col] != 0.0)
            source_.fail(
                line, "variable " + quoted(name) + " has a coefficient and a piecewise-linear term in the objective");
    }
}

// "(0, 1) (2, 5)"
PwlPoints LpReader::pwl_points() {
    PwlPoints points;
    while (points.size() < 2 || lexer_.text == "(") {
        const int line = lexer_.line;
        expect("(");
        const double x = value("the x of a point");
        expect(",");
        points.emplace_back(x, value("the y of a point"));
        expect(")");
        if (const char* fault = point_fault(points, points.size() - 1))
            source_.fail(line, std::string("the point ") + fault);
    }
    return points;
}

// Reads terms and constants to the first token that can't go on, or to the end of the line where the
// next line may be a constraint that begins with a sign.
Expression LpReader::expression(double scale, bool several_lines) {
    Expression sum;
    while (!sum.any || several_lines || !lexer_.starts_line) {
        double coeff = scale;
        bool sign = false, number = false;
        for (; lexer_.kind == LpToken::kPlus || lexer_.kind == LpToken::kMinus; lexer_.next()) {
            if (lexer_.kind == LpToken::kMinus) coeff = -coeff;
            sign = true;
        }
        if (sum.any && !sign) break;
        if (lexer_.kind == LpToken::kNumber) {
            coeff *= lexer_.number;
            number = true;
            lexer_.next();
            if (lexer_.kind == LpToken::kTimes) {
                lexer_.next();
                if (lexer_.kind != LpToken::kName) unexpected("a variable");
            }
        }
        const bool same_line = !number || several_lines || !lexer_.starts_line;
        const bool infinity = lexer_.kind == LpToken::kName && same_line && is_lp_infinity(lexer_.text);
        if (infinity && number) unexpected("a variable");
        if (infinity) {
            sum.constant += coeff * scale * kInfinity;
            lexer_.next();
        } else if (lexer_.kind == LpToken::kName && same_line) {
            add_term(lexer_.text, coeff);
            sum.has_terms = true;
            lexer_.next();
        } else if (lexer_.at_sign("[") && !number) {
            bracket(coeff);
            sum.has_terms = true;
        } else if (number) {
            sum.constant += coeff * scale;
        } else if (sign) {
            unexpected("a number or a variable");
        } else {
            break;
        }
        sum.any = true;
    }
    return sum;
}

void LpReader::add_term(std::string_view name, double coeff) {
    if (std::fabs(coeff) >= kInfinityThreshold)
        source_.fail(lexer_.line, "the coefficient of " + quoted(name) + " is too large");
    const int col = new_column(name);
    Rows& rows = out_.rows;
    if (entry_[col] >= 0) {
        rows.val[entry_[col]] += coeff;
        return;
    }
    entry_[col] = static_cast<std::int64_t>(rows.col.size());
    rows.col.push_back(col);
    rows.val.push_back(coeff);
}

// "[ 2 x ^ 2 - x * y ] / 2"
void LpReader::bracket(double factor) {
    const std::size_t first = products_.size();
    lexer_.next();
    while (!lexer_.at_sign("]")) {
        double coeff = factor;
        bool sign = false;
        for (; lexer_.kind == LpToken::kPlus || lexer_.kind == LpToken::kMinus; lexer_.next()) {
            if (lexer_.kind == LpToken::kMinus) coeff = -coeff;
            sign = true;
        }
        if (products_.size() > first && !sign) unexpected("+, - or ]");
        if (lexer_.kind == LpToken::kNumber) {
            coeff *= lexer_.number;
            lexer_.next();
            if (lexer_.kind == LpToken::kTimes) lexer_.next();
        }
        product(coeff);
    }
    lexer_.next();
    if (lexer_.at_sign("/")) {
        lexer_.next();
        if (lexer_.kind != LpToken::kNumber || lexer_.number != 2.0) unexpected("2 behind the /");
        lexer_.next();
        for (std::size_t k = first; k < products_.size(); ++k) products_.val[k] *= 0.5;
    }
    has_bracket_ = true;
}

void LpReader::product(double coeff) {
    const int one = factor_column();
    int other = one;
    if (lexer_.at_sign("^")) {
        lexer_.next();
        if (lexer_.kind != LpToken::kNumber || lexer_.number != 2.0) unexpected("2, as in x ^ 2");
        lexer_.next();
    } else if (lexer_.kind == LpToken::kTimes) {
        lexer_.next();
        other = factor_column();
    } else {
        unexpected("^ 2 or * and a variable");
    }
    products_.push_back(one, other, coeff);
}

// The place of the first ] that has no [ before it, the size when there is none.
static std::size_t closing_bracket(std::string_view text) {
    int open = 0;
    for (std::size_t k = 0; k < text.size(); ++k) {
        if (text[k] == '[') ++open;
        if (text[k] == ']' && open-- == 0) return k;
    }
    return text.size();
}

// Behind a name may stand what closes the bracket around it, except where a known variable is named so.
int LpReader::factor_column() {
    if (lexer_.kind != LpToken::kName) unexpected("a variable");
    if (col_names_.find(lexer_.text) < 0) lexer_.shorten(closing_bracket(lexer_.text));
    const int col = new_column(lexer_.text);
    lexer_.next();
    return col;
}

QuadTerms LpReader::take_products() {
    QuadTerms terms = merged_terms(static_cast<int>(products_.size()), products_.row.data(), products_.col.data(),
                                   products_.val.data());
    for (std::size_t k = 0; k < terms.size(); ++k)
        if (!(std::fabs(terms.val[k]) < kInfinityThreshold))
            source_.fail(lexer_.line, "the coefficient of " + quoted(col_names_.name(terms.row[k])) + " times " +
                                          quoted(col_names_.name(terms.col[k])) + " is too large");
    products_ = {};
    has_bracket_ = false;
    return terms;
}

}  // namespace zelvan
