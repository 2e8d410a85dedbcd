// The changes that a model accepts: each is checked whole, then queued.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "attr/attr.h"
#include "core/model.h"

namespace zelvan {

namespace {

// Sides of a range row are infinite from here on.
constexpr double kInfiniteSide = 1e25;

double clip(double value) {
    if (value >= kInfinityThreshold) return kInfinity;
    if (value <= -kInfinityThreshold) return -kInfinity;
    return value;
}

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

void check_column(const char* name, int index, double obj, double lb, double ub, char vtype) {
    const auto refuse = [&](const std::string& fault) {
        throw Error(ZVN_ERROR_VALUE_OUT_OF_RANGE, fault + " of " + described("variable", name, index));
    };
    if (!std::memchr("CBISN", vtype, 5))
        throw Error(ZVN_ERROR_INVALID_ARGUMENT, std::string("Type '") + vtype + "' of " +
                                                    described("variable", name, index) +
                                                    " is none of 'C', 'B', 'I', 'S', 'N'");
    if (std::isnan(lb) || clip(lb) == kInfinity) refuse("Lower bound " + std::to_string(lb));
    if (std::isnan(ub) || clip(ub) == -kInfinity) refuse("Upper bound " + std::to_string(ub));
    if (std::isnan(obj) || std::abs(obj) >= kInfinityThreshold) refuse("Objective coefficient " + std::to_string(obj));
    check_name("a variable", name);
}

}  // namespace

bool Queue::empty() const {
    return cols.size() == 0 && rows.size() == 0 && entries.empty() && writes.empty() && deleted_cols.empty() &&
           deleted_rows.empty();
}

int Model::col_limit() const { return num_cols() + queue.cols.size(); }

int Model::row_limit() const { return num_rows() + queue.rows.size(); }

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
    Columns& cols = queue.cols;
    if (num > 1) {
        const std::size_t total = static_cast<std::size_t>(cols.size()) + num;
        for (auto* array : {&cols.lb, &cols.ub, &cols.obj})
            if (array->capacity() < total) array->reserve(std::max(total, 2 * array->capacity()));
    }
    for (int j = 0; j < num; ++j) {
        const char* name = names ? names[j] : nullptr;
        const char type = vtype ? vtype[j] : 'C';
        double lower = value(lb, j, 0.0), upper = value(ub, j, kInfinity);
        if (type == 'B') {
            lower = std::max(lower, 0.0);
            upper = std::min(upper, 1.0);
        }
        cols.push_back(lower, upper, value(obj, j, 0.0), type, kept_name(name));
    }
}

void Model::add_col(int num, const int* row, const double* val, double obj, double lb, double ub, char vtype,
                    const char* name) {
    const int col = num_cols() + queue.cols.size();
    check_column(name, col, obj, lb, ub, vtype);
    check_entries("variable", name, num, row, val, row_limit());
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
            throw Error(ZVN_ERROR_VALUE_OUT_OF_RANGE,
                        place(k) + " (index " + std::to_string(i) + ") has the coefficient " + std::to_string(val[k]));
    }
}

void Model::append_entries(int num, const int* col, const double* val) {
    for (int k = 0; k < num; ++k) {
        if (val[k] == 0.0) continue;
        queue.rows.col.push_back(col[k]);
        queue.rows.val.push_back(val[k]);
    }
}

namespace {

void check_row(const char* name, int index, char sense, double rhs) {
    const double right = clip(rhs);
    if (sense != '<' && sense != '>' && sense != '=')
        throw Error(ZVN_ERROR_INVALID_ARGUMENT, std::string("Sense '") + sense + "' of " +
                                                    described("constraint", name, index) + " is none of '<', '>', '='");
    if (std::isnan(rhs) || (sense == '=' && std::abs(right) == kInfinity) || (sense == '<' && right == -kInfinity) ||
        (sense == '>' && right == kInfinity))
        throw Error(ZVN_ERROR_VALUE_OUT_OF_RANGE, "Right-hand side " + std::to_string(rhs) + " of " +
                                                      described("constraint", name, index) + " with sense '" + sense +
                                                      "'");
    check_name("a constraint", name);
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
        check_row(name, first + i, sense[i], rhs[i]);
        check_entries("constraint", name, length(i), col + start(i), val + start(i), col_limit());
    }
    for (int i = 0; i < num; ++i) {
        append_entries(length(i), col + start(i), val + start(i));
        queue.rows.push_back(sense[i], clip(rhs[i]), kept_name(names ? names[i] : nullptr));
    }
}

void Model::add_row(int num, const int* col, const double* val, char sense, double rhs, const char* name) {
    check_row(name, num_rows() + queue.rows.size(), sense, rhs);
    check_entries("constraint", name, num, col, val, col_limit());
    append_entries(num, col, val);
    queue.rows.push_back(sense, clip(rhs), kept_name(name));
}

void Model::add_range_row(int num, const int* col, const double* val, double lower, double upper, const char* name) {
    const auto refuse = [&](const char* fault) {
        throw Error(ZVN_ERROR_VALUE_OUT_OF_RANGE,
                    "Range [" + std::to_string(lower) + ", " + std::to_string(upper) + "] of " +
                        described("constraint", name, num_rows() + queue.rows.size()) + fault);
    };
    if (std::isnan(lower) || std::isnan(upper)) refuse(" is not a number");
    if (lower > upper) refuse(": the lower side is above the upper one");
    const bool has_lower = lower > -kInfiniteSide, has_upper = upper < kInfiniteSide;
    if ((has_lower && std::abs(lower) >= kInfinityThreshold) || (has_upper && std::abs(upper) >= kInfinityThreshold))
        refuse(": a finite side is below 1e20 in magnitude, an infinite one at least 1e25");
    if (has_lower != has_upper) return add_row(num, col, val, has_lower ? '>' : '<', has_lower ? lower : upper, name);
    check_name("a constraint", name);
    check_entries("constraint", name, num, col, val, col_limit());
    append_entries(num, col, val);
    const std::string_view row_name = kept_name(name);
    if (env.params.get_int(Param::UpdateMode) != 1) {
        queue.rows.push_back_range(has_lower ? lower : -kInfinity, has_upper ? upper : kInfinity, row_name);
        return;
    }
    queue.helpers.push_back(
        {num_rows() + queue.rows.size(), has_lower ? 0.0 : -kInfinity, has_upper ? upper - lower : kInfinity});
    queue.rows.push_back('=', has_upper ? upper : 0.0, row_name);
}

void Model::delete_cols(int num, const int* col) {
    for (int k = 0; k < num; ++k)
        if (col[k] < 0 || col[k] >= col_limit())
            throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE,
                        "Variable " + std::to_string(col[k]) + " can't be deleted: it is not in the model");
    queue.deleted_cols.insert(queue.deleted_cols.end(), col, col + num);
}

void Model::delete_rows(int num, const int* row) {
    for (int k = 0; k < num; ++k)
        if (row[k] < 0 || row[k] >= row_limit())
            throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE,
                        "Constraint " + std::to_string(row[k]) + " can't be deleted: it is not in the model");
    queue.deleted_rows.insert(queue.deleted_rows.end(), row, row + num);
}

void Model::set_objective(int number, int sense, Objective fields, int num, const int* col, const double* val) {
    if (num < 0) throw Error(ZVN_ERROR_INVALID_ARGUMENT, "Number of objective terms is negative");
    if (sense < -1 || sense > 1)
        throw Error(ZVN_ERROR_INVALID_ARGUMENT, "Objective sense " + std::to_string(sense) + " is none of 1, -1 and 0");
    for (double value : {fields.constant, fields.weight})
        if (!(std::abs(value) < kInfinityThreshold))
            throw Error(ZVN_ERROR_VALUE_OUT_OF_RANGE, "Objective constant or weight is " + std::to_string(value));
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
                                                          " is " + std::to_string(val[k]));
    }
    ObjectiveWrite write{sense, number, num_cols() + queue.cols.size(), std::move(fields), {}, {}};
    write.col.assign(col, col + num);
    write.val.assign(val, val + num);
    if (number >= objective_limit()) queue.num_objectives = number + 1;
    queue.writes.push_back({Write::kObjective, 0, static_cast<int>(queue.objectives.size()), 0.0});
    queue.objectives.push_back(std::move(write));
}

void Model::set_pwl_obj(int col, PwlPoints points) {
    if (col < 0 || col >= col_limit())
        throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE, "Variable " + std::to_string(col) + " is not in the model");
    const auto refuse = [&](std::size_t k, const char* fault) {
        throw Error(ZVN_ERROR_INVALID_PIECEWISE_OBJ, "Point " + std::to_string(k) +
                                                         " of the piecewise-linear objective of variable " +
                                                         std::to_string(col) + fault);
    };
    if (points.size() == 1) refuse(0, " stands alone: at least two points are needed");
    for (std::size_t k = 0; k < points.size(); ++k) {
        if (!(std::abs(points[k].first) < kInfinityThreshold && std::abs(points[k].second) < kInfinityThreshold))
            refuse(k, " is not finite");
        if (k > 0 && points[k].first < points[k - 1].first) refuse(k, " lies left of the point before it");
        if (k > 1 && points[k].first == points[k - 2].first) refuse(k, " is the third with the same x");
    }
    queue.writes.push_back({Write::kPwl, 0, static_cast<int>(queue.pwl.size()), 0.0});
    queue.pwl.push_back({col, std::move(points)});
}

void Model::reserve_writes(int num) {
    const std::size_t needed = queue.writes.size() + static_cast<std::size_t>(num);
    if (needed > queue.writes.capacity()) queue.writes.reserve(std::max(needed, 2 * queue.writes.capacity()));
}

void Model::write_number(int attr, int index, double value, int number) {
    queue.writes.push_back({attr, number, index, value});
    if (attr == static_cast<int>(Attr::NumObj)) queue.num_objectives = static_cast<int>(value);
}

void Model::write_text(int attr, int index, std::string_view value, int number) {
    const bool names_object = attr == static_cast<int>(Attr::VarName) || attr == static_cast<int>(Attr::ConstrName);
    if (names_object && env.params.get_int(Param::IgnoreNames)) return;
    queue.writes.push_back({Write::kText, 0, static_cast<int>(queue.texts.size()), 0.0});
    queue.texts.push_back({attr, number, index, std::string(value)});
}

}  // namespace zelvan
