// The changes that a model accepts: each is checked whole, then queued.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <unordered_set>

#include "core/clean.h"
#include "core/families.h"
#include "core/model.h"
#include "core/number_text.h"

namespace zelvan {

namespace {

// Sides of a range row are infinite from here on.
constexpr double kInfiniteSide = 1e25;

std::string described(const char* what, const char* name, int index) {
    if (name && *name) return std::string(what) + " '" + name + "'";
    return std::string("new ") + what + " " + std::to_string(index);
}

void check_name(const char* what, const char* name) {
    if (name && std::strlen(name) > ZVN_MAX_NAMELEN)
        throw Error(ZVN_ERROR_INVALID_ARGUMENT, std::string("Name of ") + what + " is longer than " +
                                                    std::to_string(ZVN_MAX_NAMELEN) + " bytes: '" +
                                                    std::string(name, 40) + "...'");
}

// Bytes that names take, their NULs included.
std::size_t bytes_of_names(int num, const char* const* names) {
    std::size_t bytes = 0;
    for (int i = 0; i < num && names; ++i) bytes += names[i] && *names[i] ? std::strlen(names[i]) + 1 : 0;
    return bytes;
}

void check_column(const char* name, int index, double obj, double lb, double ub, char vtype) {
    const auto refuse = [&](const char* what, double value) {
        throw Error(ZVN_ERROR_VALUE_OUT_OF_RANGE,
                    what + number_text(value) + " of " + described("variable", name, index) + why_not_finite(value));
    };
    if (!std::memchr("CBISN", vtype, 5))
        throw Error(ZVN_ERROR_INVALID_ARGUMENT, std::string("Type '") + vtype + "' of " +
                                                    described("variable", name, index) +
                                                    " is none of 'C', 'B', 'I', 'S', 'N'");
    if (std::isnan(lb) || clipped(lb) == kInfinity) refuse("Lower bound ", lb);
    if (std::isnan(ub) || clipped(ub) == -kInfinity) refuse("Upper bound ", ub);
    if (std::isnan(obj) || std::abs(obj) >= kInfinityThreshold) refuse("Objective coefficient ", obj);
    check_name("a variable", name);
}

}  // namespace

bool Queue::empty() const {
    return !has_objects() && entries.empty() && writes.empty() &&
           std::all_of(deleted.begin(), deleted.end(), [](const auto& list) { return list.empty(); });
}

const char* side_fault(char sense, double right, double lower) {
    if (sense == '=' && std::abs(right) == kInfinity) return "it must be finite";
    if (sense == '<' && right == -kInfinity) return "nothing is less";
    if (sense == '>' && right == kInfinity) return "nothing is greater";
    if (sense == 'R' && right < lower) return "it is below the lower side";
    return nullptr;
}

std::string_view Model::kept_name(const char* name) const {
    return name && !env.params.get_int(Param::IgnoreNames) ? name : std::string_view();
}

int Model::objective_limit() const {
    return queue.num_objectives >= 0 ? queue.num_objectives : static_cast<int>(data.objectives.size());
}

void Model::add_cols(int num, const double* obj, const double* lb, const double* ub, const char* vtype,
                     const char* const* names) {
    if (num < 0) throw Error(ZVN_ERROR_INVALID_ARGUMENT, "Number of variables is negative");
    const int first = num_cols() + queue.cols.size();
    if (num > ZVN_MAXINT - first) throw Error(ZVN_ERROR_INVALID_ARGUMENT, "The model would have too many variables");
    const auto value = [](const double* array, int j, double unset) { return array ? array[j] : unset; };
    for (int j = 0; j < num; ++j)
        check_column(names ? names[j] : nullptr, first + j, value(obj, j, 0.0), value(lb, j, 0.0),
                     value(ub, j, kInfinity), vtype ? vtype[j] : 'C');
    make_room(queue.cols, num, bytes_of_names(num, names));
    for (int j = 0; j < num; ++j) {
        const char* name = names ? names[j] : nullptr;
        const char type = vtype ? vtype[j] : 'C';
        double lower = value(lb, j, 0.0), upper = value(ub, j, kInfinity);
        if (type == 'B') {
            lower = std::max(lower, 0.0);
            upper = std::min(upper, 1.0);
        }
        queue.cols.push_back(lower, upper, value(obj, j, 0.0), type, kept_name(name));
    }
}

void Model::add_col(int num, const int* row, const double* val, double obj, double lb, double ub, char vtype,
                    const char* name) {
    const int col = num_cols() + queue.cols.size();
    check_column(name, col, obj, lb, ub, vtype);
    check_entries("variable", name, num, row, val, row_limit());
    make_room(queue.entries, num);
    add_cols(1, &obj, &lb, &ub, &vtype, &name);
    for (int k = 0; k < num; ++k)
        if (val[k] != 0.0) queue.entries.push_back({row[k], col, val[k]});
}

// Starts of `num` columns or rows in a list of num_entries: not decreasing, within the list.
static void check_starts(const char* what, int num, int num_entries, const int* beg) {
    if (num < 0 || num_entries < 0)
        throw Error(ZVN_ERROR_INVALID_ARGUMENT, std::string("Number of ") + what + "s or of their entries is negative");
    for (int i = 0; i < num && num_entries > 0; ++i)
        if (beg[i] < (i ? beg[i - 1] : 0) || beg[i] > num_entries)
            throw Error(ZVN_ERROR_INVALID_ARGUMENT, "Start " + std::to_string(beg[i]) + " of the entries of " + what +
                                                        " " + std::to_string(i) + " is not in order");
}

void Model::add_cols_with_entries(int num, int num_entries, const int* beg, const int* row, const double* val,
                                  const double* obj, const double* lb, const double* ub, const char* vtype,
                                  const char* const* names) {
    check_starts("variable", num, num_entries, beg);
    const auto length = [&](int j) { return (j + 1 < num ? beg[j + 1] : num_entries) - beg[j]; };
    for (int j = 0; j < num; ++j)
        check_entries("variable", names ? names[j] : nullptr, length(j), row + beg[j], val + beg[j], row_limit());
    const int first = num_cols() + queue.cols.size();
    make_room(queue.entries, num_entries);
    add_cols(num, obj, lb, ub, vtype, names);
    for (int j = 0; j < num; ++j)
        for (int k = beg[j]; k < beg[j] + length(j); ++k)
            if (val[k] != 0.0) queue.entries.push_back({row[k], first + j, val[k]});
}

void Model::check_entries(const char* what, const char* name, int num, const int* ind, const double* val, int limit) {
    if (num < 0)
        throw Error(ZVN_ERROR_INVALID_ARGUMENT, std::string("Number of entries of a ") + what + " is negative");
    if (mark_.size() < static_cast<std::size_t>(limit)) mark_.resize(limit + limit / 2, 0);
    if (call_ == std::numeric_limits<int>::max()) {
        std::fill(mark_.begin(), mark_.end(), 0);
        call_ = 0;
    }
    ++call_;
    const auto place = [&](int k) {
        return "Entry " + std::to_string(k) + " of " +
               (name && *name ? what + std::string(" '") + name + "'" : "a new " + std::string(what));
    };
    for (int k = 0; k < num; ++k) {
        const int i = ind[k];
        if (i < 0 || i >= limit)
            throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE, place(k) + " has index " + std::to_string(i) +
                                                          ", allowed are 0 to " + std::to_string(limit - 1));
        if (mark_[i] == call_) throw Error(ZVN_ERROR_DUPLICATES, place(k) + " repeats index " + std::to_string(i));
        mark_[i] = call_;
        if (!(std::abs(val[k]) < kInfinityThreshold))
            throw Error(ZVN_ERROR_VALUE_OUT_OF_RANGE, place(k) + " (index " + std::to_string(i) +
                                                          ") has the coefficient " + number_text(val[k]) + ", which" +
                                                          why_not_finite(val[k]));
    }
}

namespace {

void append_entries(SparseRows& rows, int num, const int* col, const double* val) {
    for (int k = 0; k < num; ++k) {
        if (val[k] == 0.0) continue;
        rows.col.push_back(col[k]);
        rows.val.push_back(val[k]);
    }
}

void check_row(Kind kind, const char* name, int index, char sense, double rhs) {
    const char* what = spec_of(kind).singular;
    if (sense != '<' && sense != '>' && sense != '=')
        throw Error(ZVN_ERROR_INVALID_ARGUMENT, std::string("Sense '") + sense + "' of " +
                                                    described(what, name, index) + " is none of '<', '>', '='");
    if (std::isnan(rhs) || side_fault(sense, clipped(rhs), -kInfinity))
        throw Error(ZVN_ERROR_VALUE_OUT_OF_RANGE, "Right-hand side " + number_text(rhs) + " of " +
                                                      described(what, name, index) + " with sense '" + sense + "'");
    check_name((std::string("a ") + what).c_str(), name);
}

}  // namespace

void Model::add_rows(int num, int num_entries, const int* beg, const int* col, const double* val, const char* sense,
                     const double* rhs, const char* const* names) {
    check_starts("constraint", num, num_entries, beg);
    const auto length = [&](int i) { return num_entries == 0 ? 0 : (i + 1 < num ? beg[i + 1] : num_entries) - beg[i]; };
    const auto start = [&](int i) { return num_entries == 0 ? 0 : beg[i]; };
    const int first = num_rows() + queue.rows.size();
    for (int i = 0; i < num; ++i) {
        const char* name = names ? names[i] : nullptr;
        check_row(Kind::kRow, name, first + i, sense[i], rhs[i]);
        check_entries("constraint", name, length(i), col + start(i), val + start(i), col_limit());
    }
    make_room(queue.rows, num, bytes_of_names(num, names), num_entries);
    for (int i = 0; i < num; ++i) {
        append_entries(queue.rows, length(i), col + start(i), val + start(i));
        queue.rows.push_back(sense[i], clipped(rhs[i]), kept_name(names ? names[i] : nullptr));
    }
}

void Model::add_row(int num, const int* col, const double* val, char sense, double rhs, const char* name) {
    check_row(Kind::kRow, name, row_limit(), sense, rhs);
    check_entries("constraint", name, num, col, val, col_limit());
    make_room(queue.rows, 1, bytes_of_names(1, &name), num);
    append_entries(queue.rows, num, col, val);
    queue.rows.push_back(sense, clipped(rhs), kept_name(name));
}

void Model::add_range_row(int num, const int* col, const double* val, double lower, double upper, const char* name) {
    const auto refuse = [&](const char* fault) {
        throw Error(ZVN_ERROR_VALUE_OUT_OF_RANGE, "Range [" + number_text(lower) + ", " + number_text(upper) + "] of " +
                                                      described("constraint", name, num_rows() + queue.rows.size()) +
                                                      fault);
    };
    if (std::isnan(lower) || std::isnan(upper)) refuse(" is not a number");
    if (lower > upper) refuse(": the lower side is above the upper one");
    const bool has_lower = lower > -kInfiniteSide, has_upper = upper < kInfiniteSide;
    if ((has_lower && std::abs(lower) >= kInfinityThreshold) || (has_upper && std::abs(upper) >= kInfinityThreshold))
        refuse(": a finite side is below 1e20 in magnitude, an infinite one at least 1e25");
    if (has_lower != has_upper) return add_row(num, col, val, has_lower ? '>' : '<', has_lower ? lower : upper, name);
    check_name("a constraint", name);
    check_entries("constraint", name, num, col, val, col_limit());
    make_room(queue.rows, 1, bytes_of_names(1, &name), num);
    make_room(queue.helpers, 1);
    append_entries(queue.rows, num, col, val);
    const std::string_view row_name = kept_name(name);
    if (env.params.get_int(Param::UpdateMode) != 1) {
        queue.rows.push_back_range(has_lower ? lower : -kInfinity, has_upper ? upper : kInfinity, row_name);
        return;
    }
    queue.helpers.push_back(
        {num_rows() + queue.rows.size(), has_lower ? 0.0 : -kInfinity, has_upper ? upper - lower : kInfinity});
    queue.rows.push_back('=', has_upper ? upper : 0.0, row_name);
}

void Model::add_sos(int num, int num_members, const int* type, const int* beg, const int* col, const double* weight) {
    check_starts("SOS", num, num_members, beg);
    const auto start = [&](int k) { return num_members == 0 ? 0 : beg[k]; };
    const auto length = [&](int k) { return (k + 1 < num ? start(k + 1) : num_members) - start(k); };
    for (int k = 0; k < num; ++k) {
        if (type[k] != 1 && type[k] != 2)
            throw Error(ZVN_ERROR_INVALID_ARGUMENT, "Type " + std::to_string(type[k]) + " of new SOS constraint " +
                                                        std::to_string(limit(Kind::kSos) + k) + " is neither 1 nor 2");
        check_entries("SOS constraint", nullptr, length(k), col + start(k), weight + start(k), col_limit());
    }
    make_room(queue.sos, num, 0, num_members);
    for (int k = 0; k < num; ++k) {
        queue.sos.col.insert(queue.sos.col.end(), col + start(k), col + start(k) + length(k));
        queue.sos.val.insert(queue.sos.val.end(), weight + start(k), weight + start(k) + length(k));
        queue.sos.push_back(type[k], {});
    }
}

QuadTerms Model::checked_quad(const std::string& what, int num, const int* qrow, const int* qcol,
                              const double* qval) const {
    if (num < 0) throw Error(ZVN_ERROR_INVALID_ARGUMENT, "Number of quadratic terms of " + what + " is negative");
    const int limit = col_limit();
    const auto pair = [](int i, int j) { return "variables " + std::to_string(i) + " and " + std::to_string(j); };
    const auto place = [&](int k) { return "Quadratic term " + std::to_string(k) + " of " + what; };
    for (int k = 0; k < num; ++k) {
        for (int j : {qrow[k], qcol[k]})
            if (j < 0 || j >= limit)
                throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE, place(k) + " has variable index " + std::to_string(j) +
                                                              ", allowed are 0 to " + std::to_string(limit - 1));
        if (!(std::abs(qval[k]) < kInfinityThreshold))
            throw Error(ZVN_ERROR_VALUE_OUT_OF_RANGE, place(k) + " (" + pair(qrow[k], qcol[k]) +
                                                          ") has the coefficient " + number_text(qval[k]) + ", which" +
                                                          why_not_finite(qval[k]));
    }
    QuadTerms terms = merged_terms(num, qrow, qcol, qval);
    for (std::size_t k = 0; k < terms.size(); ++k)
        if (!(std::abs(terms.val[k]) < kInfinityThreshold))
            throw Error(ZVN_ERROR_VALUE_OUT_OF_RANGE, "The quadratic terms of " + pair(terms.row[k], terms.col[k]) +
                                                          " of " + what + " add up to " + number_text(terms.val[k]) +
                                                          ", which" + why_not_finite(terms.val[k]));
    return terms;
}

void Model::add_quad_row(int num, const int* col, const double* val, int num_quad, const int* qrow, const int* qcol,
                         const double* qval, char sense, double rhs, const char* name) {
    const char* const what = spec_of(Kind::kQuadRow).singular;
    const int index = limit(Kind::kQuadRow);
    check_row(Kind::kQuadRow, name, index, sense, rhs);
    check_entries(what, name, num, col, val, col_limit());
    const QuadTerms quad = checked_quad(described(what, name, index), num_quad, qrow, qcol, qval);
    QuadRows& rows = queue.qrows;
    make_room(rows, 1, bytes_of_names(1, &name), num, quad.size());
    append_entries(rows, num, col, val);
    rows.quad.append(quad);
    rows.push_back(sense, clipped(rhs), kept_name(name));
}

void Model::delete_objects(Kind kind, int num, const int* index) {
    const int num_objects = limit(kind);
    for (int k = 0; k < num; ++k) {
        if (index[k] >= 0 && index[k] < num_objects) continue;
        throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE,
                    capitalized(kind) + " " + std::to_string(index[k]) + " can't be deleted: it is not in the model");
    }
    std::vector<int>& deleted = queue.deleted[static_cast<int>(kind)];
    deleted.insert(deleted.end(), index, index + num);
}

// Terms by rising column, those of one column added up.
static SparseVector sorted(std::vector<int>& col, std::vector<double>& val) {
    std::vector<std::pair<int, double>> terms;
    terms.reserve(col.size());
    for (std::size_t k = 0; k < col.size(); ++k) terms.emplace_back(col[k], val[k]);
    std::stable_sort(terms.begin(), terms.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    SparseVector vector;
    for (std::size_t k = 0; k < terms.size();) {
        const int j = terms[k].first;
        double sum = 0.0;
        for (; k < terms.size() && terms[k].first == j; ++k) sum += terms[k].second;
        if (sum != 0.0) vector.push_back(j, sum);
    }
    return vector;
}

void Model::set_objective(int number, int sense, Objective fields, int num, const int* col, const double* val,
                          QuadTerms quad) {
    if (num < 0) throw Error(ZVN_ERROR_INVALID_ARGUMENT, "Number of objective terms is negative");
    if (sense < -1 || sense > 1)
        throw Error(ZVN_ERROR_INVALID_ARGUMENT, "Objective sense " + std::to_string(sense) + " is none of 1, -1 and 0");
    for (double value : {fields.constant, fields.weight})
        if (!(std::abs(value) < kInfinityThreshold))
            throw Error(ZVN_ERROR_VALUE_OUT_OF_RANGE,
                        "Objective constant or weight " + number_text(value) + why_not_finite(value));
    if (!(fields.abs_tol >= 0) || !(fields.rel_tol >= 0))
        throw Error(ZVN_ERROR_VALUE_OUT_OF_RANGE, "Tolerances of an objective can't be negative");
    check_name("an objective", fields.name.c_str());
    const int limit = col_limit();
    for (int k = 0; k < num; ++k) {
        if (col[k] < 0 || col[k] >= limit)
            throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE, "Objective term " + std::to_string(k) + " has variable index " +
                                                          std::to_string(col[k]) + ", allowed are 0 to " +
                                                          std::to_string(limit - 1));
        if (!(std::abs(val[k]) < kInfinityThreshold))
            throw Error(ZVN_ERROR_VALUE_OUT_OF_RANGE, "Objective coefficient of variable " + std::to_string(col[k]) +
                                                          ", " + number_text(val[k]) + "," + why_not_finite(val[k]));
    }
    ObjectiveWrite write{sense, number, limit, std::move(fields), {}, {}, std::move(quad)};
    write.col.assign(col, col + num);
    write.val.assign(val, val + num);
    if (number > 0) {
        write.fields.coeff = sorted(write.col, write.val);
        write.col = {};
        write.val = {};
    }
    make_room(queue.writes, 1);
    make_room(queue.objectives, 1);
    if (number >= objective_limit()) queue.num_objectives = number + 1;
    queue.writes.push_back({&rules::kObjective, 0, static_cast<int>(queue.objectives.size()), 0.0});
    queue.objectives.push_back(std::move(write));
}

void Model::set_pwl_obj(int col, PwlPoints points) {
    if (col < 0 || col >= col_limit())
        throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE, "Variable " + std::to_string(col) + " is not in the model");
    const auto refuse = [&](std::size_t k, const char* fault) {
        throw Error(ZVN_ERROR_INVALID_PIECEWISE_OBJ, "Point " + std::to_string(k) +
                                                         " of the piecewise-linear objective of variable " +
                                                         std::to_string(col) + " " + fault);
    };
    if (points.size() == 1) refuse(0, "stands alone: at least two points are needed");
    for (std::size_t k = 0; k < points.size(); ++k)
        if (const char* fault = point_fault(points, k)) refuse(k, fault);
    PwlWrite write{col, {}};
    if (!points.empty()) {
        std::map<int, PwlPoints> term;
        term.emplace(col, std::move(points));
        write.term = term.extract(term.begin());
    }
    make_room(queue.writes, 1);
    make_room(queue.pwl, 1);
    queue.writes.push_back({&rules::kPwl, 0, static_cast<int>(queue.pwl.size()), 0.0});
    queue.pwl.push_back(std::move(write));
}

void Model::reserve_writes(int num) { make_room(queue.writes, num); }

void Model::write_number(const WriteRule& rule, int index, double value, int number) {
    queue.writes.push_back({&rule, number, index, value});
    if (&rule == &rules::kNumObjectives) queue.num_objectives = static_cast<int>(value);
}

void Model::write_numbers(const WriteRule& rule, const std::vector<int>& values) {
    reserve_writes(static_cast<int>(values.size()));
    for (std::size_t i = 0; i < values.size(); ++i) write_number(rule, static_cast<int>(i), values[i]);
}

void Model::write_numbers(const WriteRule& rule, const std::vector<int>& index, const std::vector<double>& values) {
    reserve_writes(static_cast<int>(values.size()));
    for (std::size_t k = 0; k < index.size(); ++k) write_number(rule, index[k], values[k]);
}

void Model::reserve_texts(int num, std::size_t bytes) {
    if (queue.text_bytes + bytes > queue.text_limit) drop_replaced_texts();
    make_room(queue.writes, num);
    make_room(queue.texts, num);
}

void Model::write_text(const TextRule& rule, int index, std::string value, int number) noexcept {
    if (rule.is_name && env.params.get_int(Param::IgnoreNames)) return;
    queue.text_bytes += value.size();
    queue.texts.push_back({&rule, number, index, std::move(value)});
    queue.writes.push_back({&rules::kText, 0, static_cast<int>(queue.texts.size()) - 1, 0.0});
}

// A text that a later one replaces needn't wait for the update: it becomes an empty one.
void Model::drop_replaced_texts() {
    constexpr std::size_t kFewBytes = 1 << 20;
    std::array<std::unordered_set<std::uint64_t>, kNumKinds> written;
    std::size_t bytes = 0;
    for (auto write = queue.texts.rbegin(); write != queue.texts.rend(); ++write) {
        const std::uint64_t key = 2 * static_cast<std::uint64_t>(write->index) + write->rule->is_name;
        if (write->rule->names && !written[static_cast<int>(write->rule->kind)].insert(key).second)
            std::string().swap(write->value);
        bytes += write->value.size();
    }
    queue.text_bytes = bytes;
    queue.text_limit = 2 * bytes + kFewBytes;
}

void Model::drop_hints() {
    for_each_family(data, [](auto& family) { family.optional.clear(); });
    std::erase_if(queue.writes, [](const Write& write) { return write.rule->effect == Effect::kHint; });
}

}  // namespace zelvan
