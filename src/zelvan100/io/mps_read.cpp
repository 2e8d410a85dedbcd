#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "io/letters.h"
#include "io/mps.h"
#include "io/mps_bounds.h"
#include "io/mps_lines.h"
#include "io/name_table.h"
#include "io/number.h"
#include "io/objectives.h"
#include "io/quad_matrices.h"
#include "io/row_kind.h"
#include "io/sos_sets.h"

namespace zelvan {

namespace {

// What a row of the file is, besides a row of the matrix: dropped, or an objective, numbered downwards.
constexpr int kDroppedRow = -1, kFirstObjective = -2;
constexpr std::uint8_t kLowerSet = 1, kBounded = 2;  // a lower bound, any bound was given for a column

// 0 when the word names no sense.
int parse_sense(std::string_view word) {
    const std::string upper = upper_case(word);
    if (upper == "MAX" || upper == "MAXIMIZE" || upper == "MAXIMISE" || upper == "MAXIMUM") return -1;
    if (upper == "MIN" || upper == "MINIMIZE" || upper == "MINIMISE" || upper == "MINIMUM") return 1;
    return 0;
}

constexpr std::string_view kUnsupported[] = {
    "CSECTION", "SOS1", "SOS2", "GENCONS", "INDICATORS", "LAZYCONS", "USERCUTS", "SCENARIOS", "BRANCH",
};

class MpsReader {
public:
    MpsReader(const Source& source, bool fixed)
        : source_(source), lines_(source.text, fixed), sos_(source, out_.sos), matrices_(source, col_names_) {}
    ModelData read();
    const std::vector<std::string>& warnings() const { return warnings_; }
    int num_columns() const { return col_names_.size(); }

private:
    struct Section {
        std::string_view keyword;
        void (MpsReader::*read_line)(const MpsLine&);  // nullptr: no lines
        bool codes;                                    // its lines begin with a code
        bool argument;                                 // its header may carry a value
        const MatrixForm* matrix = nullptr;            // of a quadratic matrix; such sections may come again
    };
    static const Section kSections[];
    // The first of several right-hand sides, ranges or bounds is used; others are passed over.
    struct ChosenSet {
        bool warned = false;
        std::string_view name;
    };

    static const Section* find_section(std::string_view word);
    bool is_header(const MpsLine& line) const;
    void open_section(const MpsLine& line);
    void name_header(const MpsLine& line);
    void sense_line(const MpsLine& line);
    void objective_name_line(const MpsLine& line);
    void objective_line(const MpsLine& line);
    int objective_index(std::string_view name);
    void row_line(const MpsLine& line);
    void column_line(const MpsLine& line);
    void rhs_line(const MpsLine& line);
    void range_line(const MpsLine& line);
    void bound_line(const MpsLine& line);
    void pwl_line(const MpsLine& line);
    void sos_line(const MpsLine& line);
    void open_matrix(const MpsLine& line);
    void matrix_line(const MpsLine& line);

    void marker(const MpsLine& line);
    void new_column(const MpsLine& line);
    void add_entry(const MpsLine& line, std::string_view row_name, std::string_view number);
    bool in_chosen_set(ChosenSet& set, std::string_view name, const char* what);
    void set_bound(const MpsLine& line, const BoundCode& bound, int col, double value);
    double side(const MpsLine& line, char sense, double value) const;
    int find_row(const MpsLine& line, std::string_view name) const;
    int find_column(const MpsLine& line, std::string_view name) const;
    double number(const MpsLine& line, std::string_view text) const;
    double finite_number(const MpsLine& line, std::string_view text) const;
    [[noreturn]] void fail(const MpsLine& line, const std::string& what) const { source_.fail(line.number, what); }

    void finish();
    void settle_objectives();
    void settle_bounds();
    void build_rows();

    const Source& source_;
    MpsLines lines_;
    std::vector<std::string> warnings_;
    ModelData out_;
    const Section* section_ = nullptr;
    std::vector<const Section*> seen_;

    NameTable row_names_;         // all rows of the file
    std::vector<int> row_index_;  // by row of the file: row of the matrix, kDroppedRow or an objective
    std::vector<std::string_view> objective_names_;  // as far as the file names objectives
    int num_objectives_ = 0;
    int dropped_rows_ = 0;
    struct ObjectiveEntry {
        int objective, col;
        double val;
    };
    std::vector<ObjectiveEntry> objective_entries_;      // of further objectives
    std::vector<int> latest_col_;                        // by row of the file: the latest column with an entry there
    std::vector<std::uint8_t> rhs_given_, range_given_;  // by row of the file
    std::vector<std::pair<int, long double>> ranges_;    // row of the matrix, range
    ChosenSet rhs_set_, range_set_, bound_set_;

    NameTable col_names_;
    std::string_view current_col_;
    bool integer_ = false;
    std::vector<std::int64_t> col_start_;
    std::vector<int> col_row_;
    std::vector<double> col_val_;
    std::vector<std::uint8_t> bound_flags_;
    SosReader sos_;
    MatrixReader matrices_;
};

const MpsReader::Section MpsReader::kSections[] = {
    {"NAME", nullptr, false, true},
    {"OBJSENSE", &MpsReader::sense_line, false, true},
    {"OBJNAME", &MpsReader::objective_name_line, false, true},
    {"OBJECTIVES", &MpsReader::objective_line, false, false},
    {"ROWS", &MpsReader::row_line, true, false},
    {"COLUMNS", &MpsReader::column_line, false, false},
    {"RHS", &MpsReader::rhs_line, false, false},
    {"RANGES", &MpsReader::range_line, false, false},
    {"BOUNDS", &MpsReader::bound_line, true, false},
    {"PWLOBJ", &MpsReader::pwl_line, false, false},
    {"SOS", &MpsReader::sos_line, true, false},
    {"SETS", &MpsReader::sos_line, true, false},
    {"QUADOBJ", &MpsReader::matrix_line, false, false, &kTriangleForm},
    {"QSECTION", &MpsReader::matrix_line, false, true, &kTriangleForm},
    {"QMATRIX", &MpsReader::matrix_line, false, false, &kWholeForm},
    {"QCMATRIX", &MpsReader::matrix_line, false, true, &kRowForm},
    {"ENDATA", nullptr, false, false},
};

const MpsReader::Section* MpsReader::find_section(std::string_view word) {
    const std::string upper = upper_case(word);
    for (const Section& section : kSections)
        if (section.keyword == upper) return &section;
    return nullptr;
}

bool is_unsupported(std::string_view word) {
    return std::find(std::begin(kUnsupported), std::end(kUnsupported), upper_case(word)) != std::end(kUnsupported);
}

ModelData MpsReader::read() {
    MpsLine line;
    while (lines_.next(line, section_ && section_->codes)) {
        if (is_header(line)) {
            open_section(line);
            if (section_ && section_->keyword == "ENDATA") {
                finish();
                return std::move(out_);
            }
        } else if (section_ && section_->read_line) {
            (this->*section_->read_line)(line);
        } else {
            fail(line, quoted(line.field[0]) + " outside of a section, expected a section such as ROWS or COLUMNS");
        }
    }
    source_.fail(lines_.number(), "the file ends here, expected ENDATA");
}

// Headers begin in column 1, where some files have data as well; some files indent headers.
bool MpsReader::is_header(const MpsLine& line) const {
    const std::string_view word = line.field[0];
    if (!line.at_margin) {
        const bool in_sense = section_ && section_->read_line == &MpsReader::sense_line;
        return (line.count == 1 && !in_sense && find_section(word)) ||
               (line.count == 2 && upper_case(word) == "OBJSENSE" && parse_sense(line.field[1]) != 0);
    }
    if (const Section* section = find_section(word)) return section->argument || line.count == 1;
    if (is_unsupported(word) || (line.count == 1 && parse_sense(word) != 0)) return true;
    if (line.count > 1 && section_ && section_->read_line) return false;
    fail(line, "unknown section " + quoted(word) + ", expected one such as ROWS, COLUMNS, RHS, BOUNDS or ENDATA");
}

void MpsReader::open_section(const MpsLine& line) {
    const std::string_view word = line.field[0];
    if (is_unsupported(word)) fail(line, "section " + upper_case(word) + " is not supported");
    // A sense among the rows doesn't end them.
    if (!line.at_margin && line.count == 2) {
        out_.sense = parse_sense(line.field[1]);
        return;
    }
    section_ = find_section(word);
    if (!section_) return sense_line(line);
    if (section_->matrix) return open_matrix(line);
    if (std::find(seen_.begin(), seen_.end(), section_) != seen_.end())
        fail(line, "section " + std::string(section_->keyword) + " appears twice");
    seen_.push_back(section_);
    if (section_->keyword == "NAME")
        name_header(line);
    else if (section_->read_line && section_->argument && line.count > 1) {
        MpsLine value = line;
        value.field[0] = line.field[1];
        value.count = line.count - 1;
        (this->*section_->read_line)(value);
    }
}

void MpsReader::name_header(const MpsLine& line) {
    if (line.count < 2) return;
    // In fixed form the name has columns 15 to 22, and statistics may follow.
    const bool in_columns = line.field[1].data() - line.text.data() == 14;
    const std::string_view name = in_columns ? line.field[1] : line.rest(1);
    source_.check_name(line.number, name);
    out_.name = name;
}

void MpsReader::sense_line(const MpsLine& line) {
    const int sense = parse_sense(line.field[0]);
    if (sense == 0 || line.count > 1) fail(line, quoted(line.field[0]) + " is no objective sense, expected MAX or MIN");
    out_.sense = sense;
}

void MpsReader::objective_name_line(const MpsLine& line) {
    if (line.count > 1 || row_names_.size() > 0 || !objective_names_.empty())
        fail(line, "expected the name of one row, before section ROWS");
    objective_names_.push_back(line.field[0]);
}

// Names a row of type N as the next of several objectives, with its place among them.
void MpsReader::objective_line(const MpsLine& line) {
    const bool named_before = objective_names_.size() > out_.objectives.size();
    if (line.count != 1 + kNumObjectiveFields || row_names_.size() > 0 || named_before)
        fail(line, "expected a row, its priority, weight and two tolerances, before section ROWS");
    Objective objective;
    for (int k = 0; k < kNumObjectiveFields; ++k)
        if (!kObjectiveFields[k].set(objective, number(line, line.field[k + 1])))
            fail(line, quoted(line.field[k + 1]) + " is out of range for " + std::string(kObjectiveFields[k].name));
    source_.check_name(line.number, line.field[0]);
    if (std::find(objective_names_.begin(), objective_names_.end(), line.field[0]) != objective_names_.end())
        fail(line, "objective " + quoted(line.field[0]) + " appears twice");
    if (line.field[0] != default_objective_row(out_.objectives.size())) objective.name = line.field[0];
    objective_names_.push_back(line.field[0]);
    out_.objectives.push_back(std::move(objective));
}

// What a row of type N is.
int MpsReader::objective_index(std::string_view name) {
    const auto named = std::find(objective_names_.begin(), objective_names_.end(), name);
    const bool taken = objective_names_.empty() ? num_objectives_ == 0 : named != objective_names_.end();
    if (!taken) {
        ++dropped_rows_;
        return kDroppedRow;
    }
    ++num_objectives_;
    return kFirstObjective - static_cast<int>(objective_names_.empty() ? 0 : named - objective_names_.begin());
}

void MpsReader::row_line(const MpsLine& line) {
    const char type = line.field[0].size() == 1 ? upper_case(line.field[0])[0] : ' ';
    if (type != 'N' && type != 'L' && type != 'G' && type != 'E')
        fail(line, quoted(line.field[0]) + " is no type of a row, expected N, L, G or E");
    if (line.count != 2) fail(line, "expected the type and the name of a row");
    const std::string_view name = line.field[1];
    source_.check_name(line.number, name);
    if (!row_names_.add(name)) fail(line, "row " + quoted(name) + " appears twice");
    if (type == 'N') {
        row_index_.push_back(objective_index(name));
        return;
    }
    row_index_.push_back(out_.rows.size());
    out_.rows.sense.push_back(type == 'L' ? '<' : type == 'G' ? '>' : '=');
    out_.rows.rhs.push_back(0.0);
    out_.rows.names.push_back(name);
}

void MpsReader::column_line(const MpsLine& line) {
    if (line.count >= 2 && line.field[1] == "'MARKER'") return marker(line);
    if (line.count != 3 && line.count != 5)
        fail(line, "expected a column, a row and a number, and perhaps a second row and number");
    if (col_start_.empty()) latest_col_.assign(row_index_.size(), -1);
    if (col_start_.empty() || line.field[0] != current_col_) new_column(line);
    add_entry(line, line.field[1], line.field[2]);
    if (line.count == 5) add_entry(line, line.field[3], line.field[4]);
}

void MpsReader::marker(const MpsLine& line) {
    const std::string kind = line.count == 3 ? upper_case(line.field[2]) : std::string();
    if (kind == "'SOSORG'" || kind == "'SOSEND'") fail(line, "special ordered sets are not supported");
    if (kind != "'INTORG'" && kind != "'INTEND'") fail(line, "expected a marker 'INTORG' or 'INTEND'");
    integer_ = kind == "'INTORG'";
}

void MpsReader::new_column(const MpsLine& line) {
    current_col_ = line.field[0];
    source_.check_name(line.number, current_col_);
    if (!col_names_.add(current_col_)) fail(line, "column " + quoted(current_col_) + " appears in two places");
    col_start_.push_back(static_cast<std::int64_t>(col_row_.size()));
    out_.cols.lb.push_back(0.0);
    out_.cols.ub.push_back(kInfinity);
    out_.cols.obj.push_back(0.0);
    out_.cols.type.push_back(integer_ ? 'I' : 'C');
    bound_flags_.push_back(0);
}

void MpsReader::add_entry(const MpsLine& line, std::string_view row_name, std::string_view number) {
    const int row = find_row(line, row_name);
    const int col = out_.cols.size() - 1;
    const double value = finite_number(line, number);
    if (latest_col_[row] == col)
        fail(line, "column " + quoted(current_col_) + " has two entries in row " + quoted(row_name));
    latest_col_[row] = col;
    if (value == 0.0) return;
    const int index = row_index_[row];
    if (index == kFirstObjective) out_.cols.obj[col] = value;
    if (index < kFirstObjective) objective_entries_.push_back({kFirstObjective - index, col, value});
    if (index < 0) return;
    col_row_.push_back(index);
    col_val_.push_back(value);
}

void MpsReader::rhs_line(const MpsLine& line) {
    if (line.count < 2 || line.count > 5) fail(line, "expected a right-hand side: a name, a row and a number");
    const int first = line.count % 2;  // the name may be left out
    if (first == 1 && !in_chosen_set(rhs_set_, line.field[0], "right-hand side")) return;
    rhs_given_.resize(row_index_.size());
    for (int k = first; k < line.count; k += 2) {
        const int row = find_row(line, line.field[k]);
        const double value = number(line, line.field[k + 1]);
        if (rhs_given_[row]++) fail(line, "row " + quoted(line.field[k]) + " has two right-hand sides");
        const int index = row_index_[row];
        if (index >= 0)
            out_.rows.rhs[index] = side(line, out_.rows.sense[index], value);
        else if (index == kFirstObjective)
            out_.obj_constant = -finite_number(line, line.field[k + 1]);
        else if (index < kFirstObjective)
            out_.objectives[kFirstObjective - index].constant = -finite_number(line, line.field[k + 1]);
    }
}

void MpsReader::range_line(const MpsLine& line) {
    if (line.count < 2 || line.count > 5) fail(line, "expected a range: a name, a row and a number");
    const int first = line.count % 2;
    if (first == 1 && !in_chosen_set(range_set_, line.field[0], "range")) return;
    range_given_.resize(row_index_.size());
    for (int k = first; k < line.count; k += 2) {
        const int row = find_row(line, line.field[k]);
        std::string_view text = line.field[k + 1];
        long double range = number(line, text);
        // A double may be too coarse: see range_sides().
        if (text.front() == '+') text.remove_prefix(1);
        long double exact;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), exact);
        if (error == std::errc() && end == text.data() + text.size()) range = exact;
        if (range_given_[row]++) fail(line, "row " + quoted(line.field[k]) + " has two ranges");
        if (row_index_[row] >= 0) ranges_.emplace_back(row_index_[row], range);
    }
}

void MpsReader::bound_line(const MpsLine& line) {
    const std::string code = upper_case(line.field[0]);
    const BoundCode* const known = find_bound_code(code);
    if (!known)
        fail(line,
             quoted(line.field[0]) + " is no type of a bound, expected UP, LO, FX, FR, MI, PL, BV, LI, UI, SC or SI");
    // The name of the set may be left out, and of some types the value.
    const bool with_value =
        known->value == BoundValue::kNeeded || line.count == 4 ||
        (line.count == 3 && col_names_.find(line.field[2]) < 0 && col_names_.find(line.field[1]) >= 0);
    const int at = line.count - (with_value ? 2 : 1);
    if (line.count > 4 || at < 1 || at > 2) fail(line, "expected a bound: its type, a name, a column and a number");
    const int col = find_column(line, line.field[at]);
    const bool read_value = with_value && known->value != BoundValue::kNone;
    const double value = read_value ? clipped(number(line, line.field[at + 1])) : kInfinity;
    if (at == 2 && !in_chosen_set(bound_set_, line.field[1], "bounds")) return;
    set_bound(line, *known, col, value);
}

void MpsReader::set_bound(const MpsLine& line, const BoundCode& bound, int col, double value) {
    if ((bound.lower == Bound::kGiven && value == kInfinity) || (bound.upper == Bound::kGiven && value == -kInfinity))
        fail(line, "column " + quoted(col_names_.name(col)) + " has a bound on the wrong side of infinity");
    double& lb = out_.cols.lb[col];
    double& ub = out_.cols.ub[col];
    char& type = out_.cols.type[col];
    if (bound.lower != Bound::kKept)
        lb = bound.lower == Bound::kGiven ? value : bound.lower == Bound::kInfinite ? -kInfinity : 0.0;
    if (bound.upper != Bound::kKept)
        ub = bound.upper == Bound::kGiven ? value : bound.upper == Bound::kInfinite ? kInfinity : 1.0;
    // LI and UI make an integer column of a continuous one only.
    if (bound.type == 'I')
        type = type == 'C' ? 'I' : type == 'S' ? 'N' : type;
    else if (bound.type != 0)
        type = bound.type;
    bound_flags_[col] |= bound.lower != Bound::kKept ? kLowerSet | kBounded : kBounded;
}

void MpsReader::pwl_line(const MpsLine& line) {
    if (line.count != 3) fail(line, "expected a column and the x and y of a point");
    PwlPoints& points = out_.pwl_obj[find_column(line, line.field[0])];
    points.emplace_back(finite_number(line, line.field[1]), finite_number(line, line.field[2]));
    if (const char* fault = point_fault(points, points.size() - 1)) fail(line, std::string("the point ") + fault);
}

// " S1 set", perhaps with a word before or a priority behind the name, then members: "x 1" or "SOS x 1".
void MpsReader::sos_line(const MpsLine& line) {
    const int code = line.field[0].empty() ? 1 : 0;  // in fixed form members have none
    const int count = line.count - code;
    if (count < 2 || count > (sos_type(line.field[0]) ? 4 : 3))
        fail(line, "expected S1 or S2 and the name of a set, or a column and its weight");
    double priority;
    const bool last_is_name = count == 2 || !parse_number(line.field[count - 1], priority);
    if (sos_.begin(line.number, line.field[0], line.field[last_is_name ? count - 1 : count - 2])) return;
    if (!sos_.begun()) fail(line, quoted(line.field[code]) + " is no type of a set, expected S1 or S2");
    const std::string_view name = line.field[line.count - 2];
    sos_.add(line.number, find_column(line, name), name, number(line, line.field[line.count - 1]));
}

// Without the name of a row the matrix is that of the objective.
void MpsReader::open_matrix(const MpsLine& line) {
    if (line.count < 2) {
        if (section_->matrix == &kRowForm) fail(line, "expected the name of a row behind QCMATRIX");
        return matrices_.begin_objective(line.number, *section_->matrix);
    }
    const std::string_view name = line.rest(1);
    const int index = row_index_[find_row(line, name)];
    if (index >= 0) return matrices_.begin_row(line.number, index, name, *section_->matrix);
    if (index == kDroppedRow) return matrices_.begin_dropped(*section_->matrix);
    if (index != kFirstObjective) fail(line, "objective " + quoted(name) + " is not the first and can't be quadratic");
    matrices_.begin_objective(line.number, *section_->matrix);
}

void MpsReader::matrix_line(const MpsLine& line) {
    if (line.count != 3 && line.count != 5)
        fail(line, "expected two columns and a number, and perhaps a second column and number");
    const int col = find_column(line, line.field[0]);
    for (int k = 1; k < line.count; k += 2)
        matrices_.add(line.number, col, find_column(line, line.field[k]), number(line, line.field[k + 1]));
}

bool MpsReader::in_chosen_set(ChosenSet& set, std::string_view name, const char* what) {
    if (set.name.empty()) set.name = name;
    if (name.empty() || set.name == name) return true;
    if (!set.warned)
        warnings_.push_back(std::string("Warning: ") + what + " " + quoted(name) + " ignored, only the first, " +
                            quoted(set.name) + ", is used");
    set.warned = true;
    return false;
}

int MpsReader::find_row(const MpsLine& line, std::string_view name) const {
    const int row = row_names_.find(name);
    if (row < 0) fail(line, "unknown row " + quoted(name) + ", expected one of section ROWS");
    return row;
}

int MpsReader::find_column(const MpsLine& line, std::string_view name) const {
    const int col = col_names_.find(name);
    if (col < 0) fail(line, "unknown column " + quoted(name) + ", expected one of section COLUMNS");
    return col;
}

double MpsReader::number(const MpsLine& line, std::string_view text) const {
    double value;
    if (!parse_number(text, value)) fail(line, quoted(text) + " is not a number");
    return value;
}

double MpsReader::finite_number(const MpsLine& line, std::string_view text) const {
    const double value = number(line, text);
    if (std::fabs(value) >= kInfinityThreshold) fail(line, quoted(text) + " is too large, expected a finite number");
    return value;
}

double MpsReader::side(const MpsLine& line, char sense, double value) const {
    const double right = clipped(value);
    if ((sense != '<' && right == kInfinity) || (sense != '>' && right == -kInfinity))
        fail(line, "right-hand side on the wrong side of infinity");
    return right;
}

void MpsReader::finish() {
    for (const char* keyword : {"ROWS", "COLUMNS"})
        if (std::find(seen_.begin(), seen_.end(), find_section(keyword)) == seen_.end())
            source_.fail(lines_.number(), std::string("ENDATA before section ") + keyword);
    if (dropped_rows_ > 0)
        warnings_.push_back("Warning: " + std::to_string(dropped_rows_) +
                            " further row(s) of type N dropped, which are not the objective");
    settle_objectives();
    settle_bounds();
    build_rows();
    for (int j = 0; j < col_names_.size(); ++j) out_.cols.names.push_back(col_names_.name(j));
    out_.cols.tags.resize(out_.cols.size());
    out_.rows.tags.resize(out_.rows.size());
    matrices_.settle(out_);
}

void MpsReader::settle_objectives() {
    for (std::string_view name : objective_names_) {
        const int row = row_names_.find(name);
        if (row < 0 || row_index_[row] >= 0)
            source_.fail(lines_.number(), "the objective " + quoted(name) + " is no row of type N");
    }
    for (const auto& [objective, col, value] : objective_entries_)
        out_.objectives[objective].coeff.push_back(col, value);
    for (const auto& [col, points] : out_.pwl_obj) {
        if (points.size() < 2)
            source_.fail(lines_.number(), "the objective term of column " + quoted(col_names_.name(col)) +
                                              " has one point only, expected two or more");
        if (out_.cols.obj[col] != 0.0)
            source_.fail(lines_.number(), "column " + quoted(col_names_.name(col)) +
                                              " has a coefficient and a piecewise-linear term in the objective");
    }
}

void MpsReader::settle_bounds() {
    Columns& cols = out_.cols;
    int unbounded_integers = 0, negative = 0, first_negative = 0;
    for (int j = 0; j < cols.size(); ++j) {
        if (cols.type[j] == 'I' && bound_flags_[j] == 0) {
            cols.ub[j] = 1.0;
            ++unbounded_integers;
        }
        if (cols.ub[j] < 0.0 && (bound_flags_[j] & kLowerSet) == 0) {
            cols.lb[j] = -kInfinity;
            if (negative++ == 0) first_negative = j;
        }
    }
    if (unbounded_integers > 0)
        warnings_.push_back("Warning: " + std::to_string(unbounded_integers) +
                            " integer column(s) without bounds: bounds 0 and 1 assumed");
    if (negative > 0)
        warnings_.push_back("Warning: " + std::to_string(negative) + " column(s), the first " +
                            quoted(col_names_.name(first_negative)) +
                            ", with negative upper bound and no lower bound: lower bound -infinity assumed");
}

void MpsReader::build_rows() {
    Rows& rows = out_.rows;
    rows.start.assign(rows.size() + 1, 0);
    for (int i : col_row_) ++rows.start[i + 1];
    for (int i = 0; i < rows.size(); ++i) rows.start[i + 1] += rows.start[i];
    rows.col.resize(col_row_.size());
    rows.val.resize(col_row_.size());
    std::vector<std::int64_t> next(rows.start.begin(), rows.start.end() - 1);
    col_start_.push_back(static_cast<std::int64_t>(col_row_.size()));
    for (int j = 0; j < out_.cols.size(); ++j) {
        for (std::int64_t k = col_start_[j]; k < col_start_[j + 1]; ++k) {
            const std::int64_t to = next[col_row_[k]]++;
            rows.col[to] = j;
            rows.val[to] = col_val_[k];
        }
    }
    rows.lower.assign(rows.size(), -kInfinity);
    for (const auto& [i, range] : ranges_) {
        const char type = rows.sense[i] == '<' ? 'L' : rows.sense[i] == '>' ? 'G' : 'E';
        const auto [lower, upper] = range_sides(type, rows.rhs[i], range);
        const RowKind kind = row_kind(lower, upper);
        rows.sense[i] = kind.sense;
        rows.rhs[i] = kind.rhs;
        rows.lower[i] = kind.lower;
    }
}

}  // namespace

std::pair<double, double> range_sides(char type, double rhs, long double range) {
    const bool below = type == 'L' || (type == 'E' && range < 0);
    const long double width = std::fabs(range);
    const auto other = static_cast<double>(below ? rhs - width : rhs + width);
    return below ? std::pair(other, rhs) : std::pair(rhs, other);
}

// Most files can be read by blanks alone, whatever their form. Only where that fails are the columns of
// the fixed form tried, in which names may hold blanks.
ModelData read_mps(const Source& source, const Warn& warn) {
    MpsReader free_form(source, false), fixed_form(source, true);
    MpsReader* reader = &free_form;
    ModelData data;
    try {
        data = free_form.read();
    } catch (const ReadError& first) {
        reader = &fixed_form;
        try {
            data = fixed_form.read();
        } catch (const ReadError& second) {
            // A file that isn't in fixed form fails there at its first numbers.
            if (second.line() > first.line() && fixed_form.num_columns() > 1) throw;
            throw ReadError(first);
        }
    }
    for (const std::string& line : reader->warnings()) warn(line);
    return data;
}

}  // namespace zelvan
