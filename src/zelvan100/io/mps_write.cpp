#include <algorithm>
#include <charconv>
#include <cmath>

#include "io/mps.h"
#include "io/number.h"
#include "io/objectives.h"
#include "io/row_kind.h"
#include "io/sos_sets.h"
#include "io/written_names.h"

namespace zelvan {

namespace {

// A row as the file shows it: type, right-hand side and, where it has two sides, the text of its range.
struct FileRow {
    char type;
    double rhs;
    std::string range;
};

// Text of a range that gives back `lower` and `upper`, empty when there is none of that precision.
template <class Float>
std::string exact_range(char type, double lower, double upper) {
    char digits[64];
    const Float width = static_cast<Float>(static_cast<long double>(upper) - lower);
    const std::string text(digits, std::to_chars(digits, digits + sizeof digits, width).ptr);
    long double read_back;
    std::from_chars(text.data(), text.data() + text.size(), read_back);
    const bool exact = range_sides(type, type == 'L' ? upper : lower, read_back) == std::pair(lower, upper);
    return exact ? text : std::string();
}

FileRow file_row(const Rows& rows, int i) {
    const RowKind kind = row_kind(rows, i);
    if (kind.sense != 'R') return {kind.sense == '<' ? 'L' : kind.sense == '>' ? 'G' : 'E', kind.rhs, {}};
    const auto [_, upper, lower] = kind;
    if (upper == kInfinity) return {'L', upper, {}};
    // A double holds the width in most cases; more digits always do where rhs is the smaller side.
    for (char type : {'L', 'G'})
        if (std::string range = exact_range<double>(type, lower, upper); !range.empty())
            return {type, type == 'L' ? upper : lower, std::move(range)};
    const char type = std::fabs(upper) < std::fabs(lower) ? 'L' : 'G';
    return {type, type == 'L' ? upper : lower, exact_range<long double>(type, lower, upper)};
}

class MpsWriter {
public:
    MpsWriter(const ModelData& data, const Warn& warn)
        : data_(data), names_(data, mps_holds_name, mps_holds_name, "MPS", warn) {
        for (std::size_t k = 0; k < std::max<std::size_t>(1, data.objectives.size()); ++k) name_objective(k);
    }
    std::string write();

private:
    void name_objective(std::size_t k);
    double cost(std::size_t k, int j) const { return k == 0 ? data_.cols.obj[j] : data_.objectives[k].coeff.at(j); }
    void objectives();
    void rows();
    void columns();
    void right_hand_sides();
    void bounds();
    void bounds_of(int j);
    void pwl_terms();
    void sets();
    void matrices();
    void matrix(const QuadTerms& terms, std::size_t begin, std::size_t end, bool of_row);
    void line(std::string_view first, std::string_view second, double value);
    void bound(std::string_view code, int j);
    void bound(std::string_view code, int j, double value);

    const ModelData& data_;
    WrittenNames names_;
    std::vector<std::string> objective_rows_;
    std::vector<FileRow> file_rows_;
    std::string out_;
};

std::string MpsWriter::write() {
    out_.reserve(1024 + 40 * data_.rows.col.size() + 40 * (data_.cols.lb.size() + data_.rows.rhs.size()));
    out_ += "NAME";
    if (const std::string name = names_.model_name(); !name.empty()) (out_ += ' ') += name;
    out_ += '\n';
    if (data_.sense < 0) out_ += "OBJSENSE\n    MAX\n";
    objectives();
    rows();
    columns();
    right_hand_sides();
    bounds();
    pwl_terms();
    sets();
    matrices();
    out_ += "ENDATA\n";
    return std::move(out_);
}

void MpsWriter::line(std::string_view first, std::string_view second, double value) {
    out_ += "    ";
    out_ += first;
    out_ += ' ';
    out_ += second;
    out_ += ' ';
    append_number(out_, value);
    out_ += '\n';
}

// An objective without a name of its own gets the default one, lengthened until no row has it.
void MpsWriter::name_objective(std::size_t k) {
    std::string name = data_.objectives.empty() ? std::string() : names_.objective(k);
    if (name.empty()) {
        name = default_objective_row(k);
        while (names_.is_taken(name)) name += '_';
    }
    objective_rows_.push_back(std::move(name));
}

void MpsWriter::objectives() {
    if (!data_.objectives.empty()) out_ += "OBJECTIVES\n";
    for (std::size_t k = 0; k < data_.objectives.size(); ++k) {
        out_ += "    " + objective_rows_[k];
        for (const ObjectiveField& field : kObjectiveFields) {
            out_ += ' ';
            append_number(out_, field.get(data_.objectives[k]));
        }
        out_ += '\n';
    }
}

void MpsWriter::rows() {
    out_ += "ROWS\n";
    for (const std::string& name : objective_rows_) out_ += " N " + name + "\n";
    for (int i = 0; i < data_.rows.size(); ++i) {
        file_rows_.push_back(file_row(data_.rows, i));
        out_ += ' ';
        out_ += file_rows_.back().type;
        out_ += ' ';
        out_ += names_.row(i);
        out_ += '\n';
    }
    for (int i = 0; i < data_.qrows.size(); ++i) {
        const char sense = data_.qrows.sense[i];
        out_ += sense == '<' ? " L " : sense == '>' ? " G " : " E ";
        out_ += names_.quad_row(i);
        out_ += '\n';
    }
}

void MpsWriter::columns() {
    out_ += "COLUMNS\n";
    const ColumnMajor matrix = by_columns(data_.rows, data_.cols.size());
    const ColumnMajor quadratic = by_columns(data_.qrows, data_.cols.size());
    bool integer = false;
    for (int j = 0; j < data_.cols.size(); ++j) {
        if ((data_.cols.type[j] == 'I') != integer) {
            integer = !integer;
            out_ += integer ? "    MARKER 'MARKER' 'INTORG'\n" : "    MARKER 'MARKER' 'INTEND'\n";
        }
        const std::string_view name = names_.col(j);
        const std::int64_t first = matrix.start[j], last = matrix.start[j + 1];
        bool written = false;
        for (std::size_t k = 0; k < objective_rows_.size(); ++k) {
            if (cost(k, j) == 0.0 && (k > 0 || first != last || quadratic.start[j] != quadratic.start[j + 1])) continue;
            line(name, objective_rows_[k], cost(k, j));
            written = true;
        }
        for (std::int64_t k = first; k < last; ++k) {
            // An explicit zero carries nothing, but a column needs a line to exist.
            if (matrix.val[k] == 0.0 && (written || k + 1 < last)) continue;
            line(name, names_.row(matrix.row[k]), matrix.val[k]);
            written = true;
        }
        for (std::int64_t k = quadratic.start[j]; k < quadratic.start[j + 1]; ++k)
            line(name, names_.quad_row(quadratic.row[k]), quadratic.val[k]);
    }
    if (integer) out_ += "    MARKER 'MARKER' 'INTEND'\n";
}

void MpsWriter::right_hand_sides() {
    out_ += "RHS\n";
    for (std::size_t k = 0; k < objective_rows_.size(); ++k) {
        const double constant = k == 0 ? data_.obj_constant : data_.objectives[k].constant;
        if (constant != 0.0) line("RHS", objective_rows_[k], -constant);
    }
    bool ranges = false;
    for (int i = 0; i < data_.rows.size(); ++i) {
        if (file_rows_[i].rhs != 0.0) line("RHS", names_.row(i), file_rows_[i].rhs);
        ranges = ranges || !file_rows_[i].range.empty();
    }
    for (int i = 0; i < data_.qrows.size(); ++i)
        if (data_.qrows.rhs[i] != 0.0) line("RHS", names_.quad_row(i), data_.qrows.rhs[i]);
    if (!ranges) return;
    out_ += "RANGES\n";
    for (int i = 0; i < data_.rows.size(); ++i) {
        if (file_rows_[i].range.empty()) continue;
        out_ += "    RNG ";
        out_ += names_.row(i);
        out_ += ' ' + file_rows_[i].range + '\n';
    }
}

void MpsWriter::bound(std::string_view code, int j) {
    out_ += ' ';
    out_ += code;
    out_ += " BND ";
    out_ += names_.col(j);
    out_ += '\n';
}

void MpsWriter::bound(std::string_view code, int j, double value) {
    bound(code, j);
    out_.back() = ' ';
    append_number(out_, value);
    out_ += '\n';
}

void MpsWriter::bounds_of(int j) {
    const double lb = data_.cols.lb[j], ub = data_.cols.ub[j];
    const char type = data_.cols.type[j];
    const double default_upper = type == 'B' ? 1.0 : kInfinity;
    if (type == 'B') bound("BV", j);
    if (type == 'S' || type == 'N') {
        bound(type == 'S' ? "SC" : "SI", j, ub);
        // Without a lower bound a negative upper one would be read as a column without lower bound.
        if (lb == -kInfinity)
            bound("MI", j);
        else if (lb != 0.0 || ub < 0.0)
            bound("LO", j, lb);
        return;
    }
    if (lb == -kInfinity && ub == kInfinity) return bound("FR", j);
    if (lb == ub) return bound("FX", j, lb);
    if (lb == -kInfinity)
        bound("MI", j);
    else if (lb != 0.0 || ub < 0.0)
        bound("LO", j, lb);
    if (ub != default_upper) bound("UP", j, ub);
    // Integer columns without any bound would be read as binary.
    else if (type == 'I' && lb == 0.0)
        bound("PL", j);
}

void MpsWriter::bounds() {
    const std::size_t before = out_.size();
    out_ += "BOUNDS\n";
    const std::size_t header_end = out_.size();
    for (int j = 0; j < data_.cols.size(); ++j) bounds_of(j);
    if (out_.size() == header_end) out_.resize(before);
}

void MpsWriter::pwl_terms() {
    if (!data_.pwl_obj.empty()) out_ += "PWLOBJ\n";
    for (const auto& [col, points] : data_.pwl_obj) {
        for (const auto& [x, y] : points) {
            out_ += "    ";
            out_ += names_.col(col);
            out_ += ' ';
            append_number(out_, x);
            out_ += ' ';
            append_number(out_, y);
            out_ += '\n';
        }
    }
}

void MpsWriter::sets() {
    const SosSets& sos = data_.sos;
    if (sos.size() > 0) out_ += "SOS\n";
    for (int k = 0; k < sos.size(); ++k) {
        out_ += sos.type[k] == 1 ? " S1 " : " S2 ";
        out_ += names_.sos(k);
        out_ += '\n';
        for (std::int64_t at = sos.start[k]; at < sos.start[k + 1]; ++at) {
            const std::string_view name = names_.col(sos.col[at]);
            // Alone, such a column would begin a set.
            if (sos_type(name)) out_ += "    SOS";
            out_ += sos_type(name) ? " " : "    ";
            out_ += name;
            out_ += ' ';
            append_number(out_, sos.val[at]);
            out_ += '\n';
        }
    }
}

void MpsWriter::matrices() {
    if (!data_.quad_obj.empty()) {
        out_ += "QUADOBJ\n";
        matrix(data_.quad_obj, 0, data_.quad_obj.size(), false);
    }
    const QuadRows& rows = data_.qrows;
    for (int i = 0; i < rows.size(); ++i) {
        out_ += "QCMATRIX ";
        out_ += names_.quad_row(i);
        out_ += '\n';
        matrix(rows.quad, rows.quad_start[i], rows.quad_start[i + 1], true);
    }
}

// That of a row is whole and means x'Qx, that of the objective is a triangle and means x'Qx / 2.
void MpsWriter::matrix(const QuadTerms& terms, std::size_t begin, std::size_t end, bool of_row) {
    for (std::size_t k = begin; k < end; ++k) {
        const std::string_view one = names_.col(terms.row[k]), other = names_.col(terms.col[k]);
        const double value = terms.val[k];
        const bool diagonal = terms.row[k] == terms.col[k];
        if (!of_row || diagonal) {
            line(one, other, diagonal && !of_row ? 2.0 * value : value);
            continue;
        }
        // A number next to 0 may have no half.
        line(one, other, 0.5 * value);
        line(other, one, value - 0.5 * value);
    }
}

}  // namespace

// The quoted word would turn an entry into a marker.
bool mps_holds_name(std::string_view name) {
    return !name.empty() && name.size() <= ZVN_MAX_NAMELEN && name.find(' ') == name.npos && name != "'MARKER'" &&
           is_clean_name(name);
}

std::string default_objective_row(std::size_t k) { return k == 0 ? "OBJ" : "OBJ" + std::to_string(k); }

std::string write_mps(const ModelData& data, const Warn& warn) { return MpsWriter(data, warn).write(); }

}  // namespace zelvan
