#include "bridge/perspective.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

namespace zelvan {

namespace {

constexpr std::size_t kMostColumns = 500;
// Added to the diagonal, in parts of its largest element, so that a singular form has an inverse.
constexpr double kShift = 1e-9;
constexpr int kMostSteps = 15;
// Of what each column could lose by itself: what is tried for all at once, and the part that ends it.
constexpr double kFirstPart = 0.7, kLeastPart = 0.02;
// Less than this part of an element isn't worth a cone.
constexpr double kLeastTaken = 1e-3;
// Left, of what could be taken, for rounding.
constexpr double kLeft = 1e-6;

struct Range {
    double lower, upper;
};

// A full symmetric matrix.
struct Matrix {
    int size;
    std::vector<double> entries;

    explicit Matrix(int size) : size(size), entries(static_cast<std::size_t>(size) * size, 0.0) {}
    double* row(int i) { return entries.data() + static_cast<std::size_t>(i) * size; }
};

// The Cholesky factor takes the place of the lower triangle. False where the matrix isn't positive definite.
bool factor(Matrix& matrix) {
    for (int i = 0; i < matrix.size; ++i) {
        double* const row = matrix.row(i);
        for (int j = 0; j <= i; ++j) {
            const double* const other = matrix.row(j);
            double sum = row[j];
            for (int k = 0; k < j; ++k) sum -= row[k] * other[k];
            if (j < i)
                row[j] = sum / other[j];
            else if (sum > 0.0)
                row[i] = std::sqrt(sum);
            else
                return false;
        }
    }
    return true;
}

// The diagonal of the inverse, of a factor.
std::vector<double> inverse_diagonal(Matrix& factor) {
    const int n = factor.size;
    std::vector<double> found(n, 0.0), column(n);
    for (int j = 0; j < n; ++j) {
        for (int i = j; i < n; ++i) {
            const double* const row = factor.row(i);
            double sum = i == j ? 1.0 : 0.0;
            for (int k = j; k < i; ++k) sum -= row[k] * column[k];
            column[i] = sum / row[i];
            found[j] += column[i] * column[i];
        }
    }
    return found;
}

std::vector<double> rounded_down(std::vector<double> taken, double shift) {
    for (double& value : taken) value = std::max(0.0, (1.0 - kLeft) * value - shift);
    return taken;
}

// Lessens the diagonal step by step: by a part of what each column could lose by itself, which is 1 over the diagonal
// of the inverse.
std::vector<double> removable(Matrix matrix, const std::vector<char>& has_switch) {
    const int n = matrix.size;
    std::vector<double> taken(n, 0.0);
    double largest = 0.0;
    for (int i = 0; i < n; ++i) largest = std::max(largest, matrix.row(i)[i]);
    for (int i = 0; i < n; ++i) matrix.row(i)[i] += kShift * largest;
    Matrix factored = matrix;
    if (!factor(factored)) return taken;
    double part = kFirstPart;
    for (int step = 0; step < kMostSteps; ++step) {
        const std::vector<double> inverse = inverse_diagonal(factored);
        const auto lessen = [&](Matrix& lessened) {
            for (int i = 0; i < n; ++i)
                if (has_switch[i]) lessened.row(i)[i] -= part / inverse[i];
        };
        factored = matrix;
        lessen(factored);
        while (!factor(factored)) {
            part /= 2.0;
            if (part < kLeastPart) return rounded_down(taken, kShift * largest);
            factored = matrix;
            lessen(factored);
        }
        lessen(matrix);
        for (int i = 0; i < n; ++i)
            if (has_switch[i]) taken[i] += part / inverse[i];
    }
    return rounded_down(taken, kShift * largest);
}

}  // namespace

Switches switches_of(const Problem& problem) {
    const auto is_binary = [&](int j) { return problem.integer[j] && problem.lb[j] >= 0.0 && problem.ub[j] <= 1.0; };
    std::map<std::pair<int, int>, Range> left;  // for a column where a binary is 0
    for (int i = 0; i < problem.num_rows(); ++i) {
        if (problem.start[i + 1] - problem.start[i] != 2) continue;
        for (int k : {problem.start[i], problem.start[i] + 1}) {
            const int column = problem.col()[k], binary = problem.col()[2 * problem.start[i] + 1 - k];
            const double value = problem.val()[k];
            if (is_binary(column) || !is_binary(binary) || value == 0.0) continue;
            Range sides{problem.row_lower[i] / value, problem.row_upper[i] / value};
            if (value < 0.0) std::swap(sides.lower, sides.upper);
            Range& range =
                left.try_emplace({column, binary}, Range{problem.lb[column], problem.ub[column]}).first->second;
            range = {std::max(range.lower, sides.lower), std::min(range.upper, sides.upper)};
        }
    }
    Switches switches;
    for (const auto& [pair, range] : left)
        if (range.lower == 0.0 && range.upper == 0.0) switches.try_emplace(pair.first, pair.second);
    return switches;
}

std::vector<std::pair<int, double>> take_diagonal(QuadTerms& terms, const Switches& switches) {
    std::vector<int> cols = terms.row;
    cols.insert(cols.end(), terms.col.begin(), terms.col.end());
    std::sort(cols.begin(), cols.end());
    cols.erase(std::unique(cols.begin(), cols.end()), cols.end());
    std::vector<char> has_switch;
    for (int j : cols) has_switch.push_back(switches.contains(j));
    if (cols.size() > kMostColumns || std::find(has_switch.begin(), has_switch.end(), 1) == has_switch.end()) return {};
    const auto place_of = [&](int j) {
        return static_cast<int>(std::lower_bound(cols.begin(), cols.end(), j) - cols.begin());
    };
    Matrix matrix(static_cast<int>(cols.size()));
    for (std::size_t k = 0; k < terms.size(); ++k) {
        const int i = place_of(terms.row[k]), j = place_of(terms.col[k]);
        matrix.row(std::max(i, j))[std::min(i, j)] += i == j ? terms.val[k] : terms.val[k] / 2.0;
    }
    const std::vector<double> found = removable(std::move(matrix), has_switch);
    std::vector<std::pair<int, double>> taken;
    for (std::size_t k = 0; k < terms.size(); ++k) {
        if (terms.row[k] != terms.col[k]) continue;
        const double value = found[place_of(terms.row[k])];
        if (value <= kLeastTaken * terms.val[k]) continue;
        taken.emplace_back(terms.row[k], value);
        terms.val[k] -= value;
    }
    return taken;
}

}  // namespace zelvan
