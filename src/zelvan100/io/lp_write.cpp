#include <algorithm>
#include <cmath>

#include "io/lp.h"
#include "io/number.h"
#include "io/objectives.h"
#include "io/row_kind.h"
#include "io/written_names.h"

namespace zelvan {

namespace {

constexpr std::size_t kLineLength = 100;  // a line is broken behind the term that passes it

class LpWriter {
public:
    LpWriter(const ModelData& data, const Warn& warn)
        : data_(data), names_(data, lp_holds_name, lp_holds_label, "LP", warn) {}
    std::string write();

private:
    int columns_in_objective() const;
    void objective();
    void sum(const std::vector<double>& coeff, int count, bool zeros, double constant, const QuadTerms& quad = {});
    void several_objectives();
    void pwl_terms();
    void constraint(int i);
    void quad_constraint(int i);
    void bracket(const QuadTerms& terms, std::size_t begin, std::size_t end, double factor, bool first);
    void bound(int j);
    void sets();
    void list(const char* keyword, std::string_view types);
    void term(double coeff, int col, bool& first);
    void number(double value);
    void break_line();

    const ModelData& data_;
    WrittenNames names_;
    std::string out_;
    std::size_t line_start_ = 0;
};

std::string LpWriter::write() {
    out_.reserve(1024 + 30 * data_.rows.col.size() + 60 * (data_.cols.lb.size() + data_.rows.rhs.size()));
    if (const std::string name = names_.model_name(); !name.empty()) out_ += "\\ Model name: " + name + "\n";
    out_ += data_.sense < 0 ? "Maximize\n" : "Minimize\n";
    objective();
    out_ += "Subject To\n";
    for (int i = 0; i < data_.rows.size(); ++i) constraint(i);
    for (int i = 0; i < data_.qrows.size(); ++i) quad_constraint(i);
    several_objectives();
    pwl_terms();
    const std::size_t before = out_.size();
    out_ += "Bounds\n";
    const std::size_t header_end = out_.size();
    for (int j = 0; j < data_.cols.size(); ++j) bound(j);
    if (out_.size() == header_end) out_.resize(before);
    list("Binaries\n", "B");
    list("Generals\n", "IN");
    list("Semi-Continuous\n", "SN");
    sets();
    out_ += "End\n";
    return std::move(out_);
}

// Columns are numbered in the order of their appearance. The objective therefore begins with as many of
// them, with coefficient 0 where need be, that the others appear in their order in the rows. Those of quadratic terms
// come first too, as in brackets a name isn't always told from what is behind it.
int LpWriter::columns_in_objective() const {
    const int num_cols = data_.cols.size();
    std::vector<int> appearance(num_cols, -1);
    int next = 0;
    for (const SparseRows* rows :
         {static_cast<const SparseRows*>(&data_.rows), static_cast<const SparseRows*>(&data_.qrows)})
        for (std::size_t k = 0; k < rows->col.size(); ++k) {
            int& at = appearance[rows->col[k]];
            if (at < 0 && rows->val[k] != 0.0) at = next++;
        }
    int least = data_.qrows.size() > 0 ? std::min(1, num_cols) : 0;
    for (const QuadTerms* terms : {&data_.quad_obj, &data_.qrows.quad})
        for (int j : terms->col) least = std::max(least, j + 1);
    int count = num_cols;
    while (count > least && data_.cols.obj[count - 1] == 0.0 && appearance[count - 1] >= 0 &&
           (count == num_cols || appearance[count - 1] < appearance[count]))
        --count;
    return count;
}

void LpWriter::objective() {
    line_start_ = out_.size();
    out_ += ' ';
    if (!data_.objectives.empty() && !names_.objective(0).empty()) out_ += names_.objective(0) + ":";
    sum(data_.cols.obj, columns_in_objective(), true, data_.obj_constant, data_.quad_obj);
}

// The terms of the first `count` columns, quadratic terms and a constant, to the end of the line.
void LpWriter::sum(const std::vector<double>& coeff, int count, bool zeros, double constant, const QuadTerms& quad) {
    bool first = true;
    for (int j = 0; j < count; ++j)
        if (zeros || coeff[j] != 0.0) term(coeff[j], j, first);
    if (!quad.empty()) {
        bracket(quad, 0, quad.size(), 2.0, first);
        out_ += " / 2";
        first = false;
    }
    if (constant != 0.0) {
        if (!first || std::signbit(constant)) out_ += std::signbit(constant) ? " -" : " +";
        out_ += ' ';
        append_number(out_, std::fabs(constant));
    }
    out_ += '\n';
}

void LpWriter::several_objectives() {
    for (std::size_t k = 0; k < data_.objectives.size(); ++k) {
        const Objective& objective = data_.objectives[k];
        out_ += "Objective " + std::to_string(k);
        for (const ObjectiveField& field : kObjectiveFields) {
            out_ += ' ' + std::string(field.name) + ' ';
            append_number(out_, field.get(objective));
        }
        out_ += '\n';
        if (k == 0) continue;
        line_start_ = out_.size();
        out_ += ' ';
        if (!names_.objective(k).empty()) out_ += names_.objective(k) + ":";
        sum(objective.coeff.dense(data_.cols.size()), data_.cols.size(), false, objective.constant);
    }
}

void LpWriter::pwl_terms() {
    if (!data_.pwl_obj.empty()) out_ += "PWLObj\n";
    for (const auto& [col, points] : data_.pwl_obj) {
        out_ += ' ';
        out_ += names_.col(col);
        out_ += ':';
        for (const auto& [x, y] : points) {
            out_ += " (";
            append_number(out_, x);
            out_ += ", ";
            append_number(out_, y);
            out_ += ')';
        }
        out_ += '\n';
    }
}

void LpWriter::break_line() {
    if (out_.size() - line_start_ < kLineLength) return;
    out_ += "\n ";
    line_start_ = out_.size() - 1;
}

void LpWriter::term(double coeff, int col, bool& first) {
    break_line();
    if (std::signbit(coeff))
        out_ += " -";
    else if (!first)
        out_ += " +";
    first = false;
    out_ += ' ';
    if (std::fabs(coeff) != 1.0) {
        append_number(out_, std::fabs(coeff));
        out_ += ' ';
    }
    out_ += names_.col(col);
}

// Terms times `factor`. `first` tells that nothing is in front of the bracket.
void LpWriter::bracket(const QuadTerms& terms, std::size_t begin, std::size_t end, double factor, bool first) {
    out_ += first ? " [" : " + [";
    bool first_product = true;
    for (std::size_t k = begin; k < end; ++k) {
        term(factor * terms.val[k], terms.row[k], first_product);
        if (terms.row[k] == terms.col[k]) {
            out_ += " ^ 2";
            continue;
        }
        out_ += " * ";
        out_ += names_.col(terms.col[k]);
    }
    if (first_product && data_.cols.size() > 0) {
        term(0.0, 0, first_product);
        out_ += " ^ 2";
    }
    out_ += " ]";
}

void LpWriter::number(double value) {
    if (std::fabs(value) == kInfinity)
        out_ += value < 0 ? "-inf" : "inf";
    else
        append_number(out_, value);
}

void LpWriter::constraint(int i) {
    const Rows& rows = data_.rows;
    const RowKind kind = row_kind(rows, i);
    line_start_ = out_.size();
    out_ += ' ';
    out_ += names_.row(i);
    out_ += ':';
    if (kind.sense == 'R') {
        out_ += ' ';
        number(kind.lower);
        out_ += " <=";
    }
    bool first = true;
    for (std::int64_t k = rows.start[i]; k < rows.start[i + 1]; ++k)
        if (rows.val[k] != 0.0) term(rows.val[k], rows.col[k], first);
    if (first && data_.cols.size() > 0)
        term(0.0, 0, first);
    else if (first)
        out_ += " 0";
    out_ += kind.sense == '>' ? " >= " : kind.sense == '=' ? " = " : " <= ";
    number(kind.rhs);
    out_ += '\n';
}

void LpWriter::quad_constraint(int i) {
    const QuadRows& rows = data_.qrows;
    line_start_ = out_.size();
    out_ += ' ';
    out_ += names_.quad_row(i);
    out_ += ':';
    bool first = true;
    for (std::int64_t k = rows.start[i]; k < rows.start[i + 1]; ++k) term(rows.val[k], rows.col[k], first);
    bracket(rows.quad, rows.quad_start[i], rows.quad_start[i + 1], 1.0, first);
    out_ += rows.sense[i] == '>' ? " >= " : rows.sense[i] == '=' ? " = " : " <= ";
    number(rows.rhs[i]);
    out_ += '\n';
}

void LpWriter::bound(int j) {
    const double lb = data_.cols.lb[j], ub = data_.cols.ub[j];
    const bool binary = data_.cols.type[j] == 'B';
    if (lb == 0.0 && ub == (binary ? 1.0 : kInfinity)) return;
    const std::string_view name = names_.col(j);
    // Binary variables and negative upper bounds have other defaults, so both bounds are given.
    const bool both = binary || ub < 0.0;
    const bool left = lb == -kInfinity || (lb != 0.0 && ub != kInfinity) || both;
    out_ += ' ';
    if (lb == -kInfinity && ub == kInfinity) {
        out_ += name;
        out_ += " free\n";
        return;
    }
    if (left && lb != ub) {
        number(lb);
        out_ += " <= ";
    }
    out_ += name;
    const bool lower_only = ub == kInfinity && !left;
    out_ += lb == ub ? " = " : lower_only ? " >= " : " <= ";
    number(lower_only ? lb : ub);
    out_ += '\n';
}

void LpWriter::list(const char* keyword, std::string_view types) {
    bool first = true;
    for (int j = 0; j < data_.cols.size(); ++j) {
        if (types.find(data_.cols.type[j]) == types.npos) continue;
        if (first) {
            out_ += keyword;
            line_start_ = out_.size();
        }
        if (!first) break_line();
        first = false;
        out_ += ' ';
        out_ += names_.col(j);
    }
    if (!first) out_ += '\n';
}

void LpWriter::sets() {
    const SosSets& sos = data_.sos;
    if (sos.size() > 0) out_ += "SOS\n";
    for (int k = 0; k < sos.size(); ++k) {
        line_start_ = out_.size();
        out_ += ' ';
        out_ += names_.sos(k);
        out_ += sos.type[k] == 1 ? ": S1::" : ": S2::";
        for (std::int64_t at = sos.start[k]; at < sos.start[k + 1]; ++at) {
            break_line();
            out_ += ' ';
            out_ += names_.col(sos.col[at]);
            out_ += ':';
            append_number(out_, sos.val[at]);
        }
        out_ += '\n';
    }
}

}  // namespace

std::string write_lp(const ModelData& data, const Warn& warn) { return LpWriter(data, warn).write(); }

}  // namespace zelvan
