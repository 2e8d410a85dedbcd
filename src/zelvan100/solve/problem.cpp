#include "solve/problem.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

#include "core/error.h"

namespace zelvan {

namespace {

// Values that HiGHS refuses, or would read as infinite.
constexpr double kLargestCoefficient = 1e15;
constexpr double kLargestCost = 1e20;
// Up to here entries are dropped, by default and whatever its options say.
constexpr double kDroppedByDefault = 1e-9;
constexpr double kSmallestCoefficient = 1e-12;

constexpr double kInf = std::numeric_limits<double>::infinity();

// HiGHS means the infinity of doubles.
inline double with_infinity(double value) {
    const double low = value <= -kInfinityThreshold ? -kInf : value;
    return value >= kInfinityThreshold ? kInf : low;
}

// A plain loop over a filled vector, which the compiler makes vector instructions of.
std::vector<double> with_infinities(const std::vector<double>& values) {
    std::vector<double> changed(values.size());
    for (std::size_t j = 0; j < values.size(); ++j) changed[j] = with_infinity(values[j]);
    return changed;
}

[[noreturn]] void refuse(const ModelData& data, int row, std::int64_t entry, const char* why) {
    throw Error(ZVN_ERROR_NUMERIC, "The coefficient of variable '" + data.col_name(data.rows.col[entry]) +
                                       "' in constraint '" + data.row_name(row) + why);
}

// The entry of a row that is largest in absolute value, and the smallest that isn't zero; -1 for none.
struct Extremes {
    std::int64_t smallest = -1, largest = -1;
};

Extremes extremes(const SparseRows& rows, int i) {
    Extremes found;
    for (std::int64_t k = rows.start[i]; k < rows.start[i + 1]; ++k) {
        const double size = std::abs(rows.val[k]);
        if (size == 0.0) continue;
        if (found.smallest < 0 || size < std::abs(rows.val[found.smallest])) found.smallest = k;
        if (found.largest < 0 || size > std::abs(rows.val[found.largest])) found.largest = k;
    }
    return found;
}

// Whether no entry needs a closer look. Counted without branches, as it is asked of all entries for each solve.
bool are_ordinary(const std::vector<double>& values) {
    const auto is_ordinary = [](double value) {
        const int large = std::abs(value) > kDroppedByDefault, small = std::abs(value) < kLargestCoefficient;
        return (large & small) != 0;
    };
    return std::count_if(values.begin(), values.end(), is_ordinary) == static_cast<std::ptrdiff_t>(values.size());
}

bool fits(double least, double most) { return least > kSmallestCoefficient && most < kLargestCoefficient; }

// The power of two that brings a row's coefficients to where none is dropped or refused; 0 when they are too far apart.
double row_factor(double least, double most) {
    if (fits(least, most)) return 1.0;
    const double factor = least <= kSmallestCoefficient
                              ? std::exp2(std::ceil(std::log2(kSmallestCoefficient / least)) + 1.0)
                              : std::exp2(-std::ceil(std::log2(most / kLargestCoefficient)) - 1.0);
    return fits(least * factor, most * factor) ? factor : 0.0;
}

// The factor of a row of the model; the earlier one as long as it will do.
double factor_of(const ModelData& data, int i, double earlier, bool& has_small_entries) {
    const auto [smallest, largest] = extremes(data.rows, i);
    if (smallest < 0) return earlier;
    const double least = std::abs(data.rows.val[smallest]), most = std::abs(data.rows.val[largest]);
    if (most >= kLargestCoefficient) refuse(data, i, largest, "' is too large to solve with: at most 1e15 is possible");
    if (least <= kDroppedByDefault) has_small_entries = true;
    if (fits(least * earlier, most * earlier)) return earlier;
    const double factor = row_factor(least, most);
    if (factor == 0.0) refuse(data, i, smallest, "' is too small to solve with next to the others there");
    return factor;
}

// Those of rows that are still there, by their numbers now.
RowFactors renumbered(const RowFactors& factors, const std::vector<int>& deleted) {
    RowFactors kept;
    auto next = deleted.begin();
    for (const auto& [i, factor] : factors) {
        next = std::lower_bound(next, deleted.end(), i);
        if (next == deleted.end() || *next != i)
            kept.emplace_back(i - static_cast<int>(next - deleted.begin()), factor);
    }
    return kept;
}

std::uint64_t fresh_version() {
    static std::atomic<std::uint64_t> latest{0};
    return ++latest;
}

}  // namespace

double main_weight(const ModelData& data) { return data.objectives.size() > 1 ? data.objectives[0].weight : 1.0; }

Problem::Problem(const ModelData& data, std::uint64_t stamp, const Changes& changes, const Ancestor& held)
    : sense(data.sense),
      offset(data.obj_constant),
      quad(data.quad_obj),
      cost(data.cols.obj),
      lb(with_infinities(data.cols.lb)),
      ub(with_infinities(data.cols.ub)),
      integer(data.cols.size(), 0),
      row_lower(data.rows.size()),
      row_upper(data.rows.size()),
      start(data.rows.start.begin(), data.rows.start.end()),
      model_cols_(data.cols.size()),
      model_rows_(data.rows.size()),
      ancestor_{stamp, {}, false},
      model_col_(data.rows.col.data()),
      model_val_(data.rows.val.data()) {
    if (data.rows.num_entries() > std::numeric_limits<int>::max())
        throw Error(ZVN_ERROR_EXCEED_2B_NONZEROS, "The model has more than 2147483647 nonzeros");
    take_columns(data);
    for (int i = 0; i < num_rows(); ++i) {
        const auto [lower, upper] = data.rows.sides(i);
        row_lower[i] = with_infinity(lower);
        row_upper[i] = with_infinity(upper);
    }
    const bool follows = held.stamp != 0 && held.stamp == changes.since;
    const RowFactors earlier = follows ? renumbered(held.factors, changes.rows.deleted) : RowFactors();
    if (follows && changes.keep_matrix(num_cols(), num_rows())) {
        ancestor_.factors = earlier;
        ancestor_.has_small_entries = held.has_small_entries;
    } else {
        choose_factors(data, earlier);
    }
    has_small_entries_ = ancestor_.has_small_entries;
    multiply_rows();
    // A session can't follow where a row of it gets another factor.
    const auto is_new = [&](const auto& factor) { return factor.first >= changes.rows.kept(); };
    const RowFactors& factors = ancestor_.factors;
    if (follows && std::equal(earlier.begin(), earlier.end(), factors.begin(),
                              std::find_if(factors.begin(), factors.end(), is_new)))
        changes_ = &changes;
}

void Problem::take_columns(const ModelData& data) {
    const auto is_too_large = [](double value) { return std::abs(value) >= kLargestCost; };
    // Counting is quicker than finding what is hardly ever there.
    if (std::count_if(cost.begin(), cost.end(), is_too_large)) {
        const auto too_large = std::find_if(cost.begin(), cost.end(), is_too_large);
        throw Error(ZVN_ERROR_NUMERIC, "The objective coefficient of variable '" +
                                           data.col_name(static_cast<int>(too_large - cost.begin())) +
                                           "' is too large to solve with: less than 1e20 is possible");
    }
    if (const double weight = main_weight(data); weight != 1.0) {
        offset *= weight;
        for (double& value : cost) value *= weight;
        for (double& value : quad.val) value *= weight;
    }
    const std::vector<char>& type = data.cols.type;
    if (std::count(type.begin(), type.end(), 'C') == num_cols()) return;
    for (int j = 0; j < num_cols(); ++j) {
        integer[j] = type[j] == 'B' || type[j] == 'I' || type[j] == 'N';
        if (type[j] != 'B') continue;
        lb[j] = std::max(lb[j], 0.0);
        ub[j] = std::min(ub[j], 1.0);
    }
}

// Earlier factors are kept where they fit, as a session then has them already.
void Problem::choose_factors(const ModelData& data, const RowFactors& earlier) {
    if (earlier.empty() && are_ordinary(data.rows.val)) return;
    auto next = earlier.begin();
    for (int i = 0; i < data.rows.size(); ++i) {
        const double old = next != earlier.end() && next->first == i ? next++->second : 1.0;
        const double factor = factor_of(data, i, old, ancestor_.has_small_entries);
        if (factor != 1.0) ancestor_.factors.emplace_back(i, factor);
    }
}

void Problem::multiply_rows() {
    if (ancestor_.factors.empty()) return;
    own_matrix();
    for (const auto& [i, factor] : ancestor_.factors) {
        for (int k = start[i]; k < start[i + 1]; ++k) val_[k] *= factor;
        row_lower[i] *= factor;
        row_upper[i] *= factor;
    }
}

void Problem::unscale(std::vector<double>& multipliers) const {
    if (multipliers.empty()) return;
    for (const auto& [i, factor] : ancestor_.factors) multipliers[i] *= factor;
}

bool Problem::is_mip() const {
    return !disjunctions.empty() || (!integer.empty() && std::memchr(integer.data(), 1, integer.size()) != nullptr);
}

bool Problem::has_empty_range() const {
    const auto has = [](const std::vector<double>& values, double value) {
        return std::count(values.begin(), values.end(), value) > 0;
    };
    return has(lb, kInf) || has(ub, -kInf) || has(row_lower, kInf) || has(row_upper, -kInf);
}

bool Problem::is_feasible(const std::vector<double>& x, double tolerance) const {
    for (int j = 0; j < num_cols(); ++j) {
        if (x[j] < lb[j] - tolerance || x[j] > ub[j] + tolerance) return false;
        if (integer[j] && std::abs(x[j] - std::round(x[j])) > tolerance) return false;
    }
    for (int i = 0; i < num_rows(); ++i) {
        double activity = 0.0;
        for (int k = start[i]; k < start[i + 1]; ++k) activity += val()[k] * x[col()[k]];
        if (activity < row_lower[i] - tolerance || activity > row_upper[i] + tolerance) return false;
    }
    return true;
}

void Problem::clear_objective() {
    offset = 0.0;
    std::fill(cost.begin(), cost.end(), 0.0);
    quad = {};
    squares.reset();
}

int Problem::add_col(double lower, double upper, double objective, bool is_integer) {
    lb.push_back(lower);
    ub.push_back(upper);
    cost.push_back(objective);
    integer.push_back(is_integer);
    version_ = fresh_version();
    return num_cols() - 1;
}

void Problem::own_matrix() {
    if (own_matrix_) return;
    col_.assign(model_col_, model_col_ + num_entries());
    val_.assign(model_val_, model_val_ + num_entries());
    own_matrix_ = true;
}

int Problem::add_row(const Terms& terms, double lower, double upper) {
    double least = kLargestCoefficient, most = 0.0;
    for (const auto& [j, coeff] : terms) {
        if (coeff != 0.0) least = std::min(least, std::abs(coeff));
        most = std::max(most, std::abs(coeff));
    }
    const double factor = row_factor(least, most);
    if (factor == 0.0) {
        char text[128];
        std::snprintf(text, sizeof text, "Coefficients from %g to %g are too far apart to solve with in one row", least,
                      most);
        throw Error(ZVN_ERROR_NUMERIC, text);
    }
    if (least * factor <= kDroppedByDefault) has_small_entries_ = true;
    own_matrix();
    for (const auto& [j, coeff] : terms) {
        col_.push_back(j);
        val_.push_back(coeff * factor);
    }
    start.push_back(static_cast<int>(col_.size()));
    row_lower.push_back(lower * factor);
    row_upper.push_back(upper * factor);
    version_ = fresh_version();
    return num_rows() - 1;
}

void Problem::change_row(int i, const Terms& terms, double lower, double upper) {
    for (std::size_t k = 0; k < terms.size(); ++k) val_[start[i] + k] = terms[k].second;
    row_lower[i] = lower;
    row_upper[i] = upper;
}

void Problem::take_values(const Problem& other) {
    sense = other.sense;
    offset = other.offset;
    lb = other.lb;
    ub = other.ub;
    cost = other.cost;
    integer = other.integer;
    std::copy(other.row_lower.begin(), other.row_lower.end(), row_lower.begin());
    std::copy(other.row_upper.begin(), other.row_upper.end(), row_upper.begin());
    const auto [first, last] = variable_rows_;
    std::copy(other.val_.begin() + start[first], other.val_.begin() + start[last], val_.begin() + start[first]);
}

void Problem::limit_objective(double value) {
    Terms terms;
    for (int j = 0; j < num_cols(); ++j)
        if (cost[j] != 0.0) terms.emplace_back(j, cost[j]);
    try {
        add_row(terms, sense > 0 ? -kInf : value, sense > 0 ? value : kInf);
    } catch (const Error& e) {
        throw Error(e.code(), "A limit on the objective can't be set: " + e.text());
    }
}

}  // namespace zelvan
