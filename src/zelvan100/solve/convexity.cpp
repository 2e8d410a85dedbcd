#include "solve/convexity.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "solve/elimination_order.h"
#include "solve/full_factor.h"

namespace zelvan {

namespace {

// Columns of a sparse matrix between two questions whether to go on.
constexpr int kColumnsBetweenAsks = 64;

// A symmetric matrix: its diagonal, and what lies beside it in both triangles.
struct Symmetric {
    Pattern pattern;
    std::vector<double> val, diagonal;

    int size() const { return pattern.size(); }
};

// The form over the columns that occur in it, whose numbers rise.
struct Form {
    std::vector<int> columns;
    Symmetric matrix;
};

Form form_of(const QuadView& terms, double sign) {
    Form form;
    form.columns.assign(terms.row.begin(), terms.row.end());
    form.columns.insert(form.columns.end(), terms.col.begin(), terms.col.end());
    std::sort(form.columns.begin(), form.columns.end());
    form.columns.erase(std::unique(form.columns.begin(), form.columns.end()), form.columns.end());
    std::vector<int> place(form.columns.empty() ? 0 : form.columns.back() + 1);
    for (std::size_t k = 0; k < form.columns.size(); ++k) place[form.columns[k]] = static_cast<int>(k);

    Symmetric& matrix = form.matrix;
    matrix.diagonal.assign(form.columns.size(), 0.0);
    matrix.pattern.start.assign(form.columns.size() + 1, 0);
    std::vector<int>& start = matrix.pattern.start;
    for (std::size_t k = 0; k < terms.size(); ++k) {
        if (terms.row[k] == terms.col[k]) continue;
        ++start[place[terms.row[k]] + 1];
        ++start[place[terms.col[k]] + 1];
    }
    std::partial_sum(start.begin(), start.end(), start.begin());
    matrix.pattern.col.resize(start.back());
    matrix.val.resize(start.back());
    std::vector<int> next(start.begin(), start.end() - 1);
    for (std::size_t k = 0; k < terms.size(); ++k) {
        const int i = place[terms.row[k]], j = place[terms.col[k]];
        if (i == j) {
            matrix.diagonal[i] += sign * terms.val[k];
            continue;
        }
        for (const auto& [at, to] : {std::pair(i, j), std::pair(j, i)}) {
            matrix.val[next[at]] = 0.5 * sign * terms.val[k];
            matrix.pattern.col[next[at]++] = to;
        }
    }
    return form;
}

// The parts that have no term in common, each by the numbers of its rows.
std::vector<std::vector<int>> connected_parts(const Pattern& pattern) {
    std::vector<std::vector<int>> parts;
    std::vector<char> found(pattern.size(), 0);
    for (int v = 0; v < pattern.size(); ++v) {
        if (found[v]) continue;
        found[v] = 1;
        std::vector<int> part{v};
        for (std::size_t k = 0; k < part.size(); ++k) {
            for (int p = pattern.start[part[k]]; p < pattern.start[part[k] + 1]; ++p) {
                const int u = pattern.col[p];
                if (!std::exchange(found[u], 1)) part.push_back(u);
            }
        }
        parts.push_back(std::move(part));
    }
    return parts;
}

// The part of a matrix; `place` is scratch space of the matrix's size.
Symmetric part_of(const Symmetric& matrix, const std::vector<int>& part, std::vector<int>& place) {
    Symmetric found;
    for (std::size_t k = 0; k < part.size(); ++k) place[part[k]] = static_cast<int>(k);
    found.pattern.start.push_back(0);
    for (int v : part) {
        found.diagonal.push_back(matrix.diagonal[v]);
        for (int p = matrix.pattern.start[v]; p < matrix.pattern.start[v + 1]; ++p) {
            found.pattern.col.push_back(place[matrix.pattern.col[p]]);
            found.val.push_back(matrix.val[p]);
        }
        found.pattern.start.push_back(static_cast<int>(found.pattern.col.size()));
    }
    return found;
}

// Column by column from the left, then the nearly full rest.
class Factor {
public:
    Factor(const Symmetric& matrix, std::vector<int> names, const Threshold& threshold)
        : matrix_(matrix),
          names_(std::move(names)),
          threshold_(threshold),
          order_(elimination_order(matrix.pattern)),
          place_(matrix.size()),
          columns_(order_.dense_from),
          users_(matrix.size()),
          sum_(matrix.size(), 0.0),
          owner_(matrix.size(), -1) {
        for (int k = 0; k < matrix.size(); ++k) place_[order_.order[k]] = k;
    }

    // Appends the squares; false when the matrix isn't convex.
    bool run(SumOfSquares& squares, const std::function<void()>& go_on) {
        for (int k = 0; k < order_.dense_from; ++k) {
            if (k % kColumnsBetweenAsks == 0) go_on();
            if (!eliminate(k)) return false;
            append(k, squares);
        }
        return run_full(squares, go_on);
    }

private:
    // A column of the lower triangular factor: rows that rise, from that of the diagonal on. `next` is the place of the
    // row that is eliminated next.
    struct Column {
        std::vector<int> row;
        std::vector<double> val;
        std::size_t next = 1;
    };

    void touch(int k, int i) {
        if (owner_[i] == k) return;
        owner_[i] = k;
        sum_[i] = 0.0;
        rows_.push_back(i);
    }

    // What is left of column k below the diagonal goes to rows_ and sum_, the diagonal is the answer.
    double gather(int k) {
        rows_.clear();
        const int v = order_.order[k];
        double diagonal = matrix_.diagonal[v];
        for (int p = matrix_.pattern.start[v]; p < matrix_.pattern.start[v + 1]; ++p) {
            const int i = place_[matrix_.pattern.col[p]];
            if (i < k) continue;
            touch(k, i);
            sum_[i] = matrix_.val[p];
        }
        for (int j : users_[k]) {
            Column& column = columns_[j];
            const double factor = column.val[column.next++];
            diagonal -= factor * factor;
            for (std::size_t t = column.next; t < column.row.size(); ++t) {
                touch(k, column.row[t]);
                sum_[column.row[t]] -= factor * column.val[t];
            }
            if (column.next < column.row.size()) users_[column.row[column.next]].push_back(j);
        }
        users_[k] = {};
        return diagonal;
    }

    bool eliminate(int k) {
        double diagonal = gather(k);
        if (diagonal < -threshold_.missing) return false;
        std::sort(rows_.begin(), rows_.end());
        double largest = 0.0;
        bool fits = diagonal > 0.0;
        for (int i : rows_) {
            largest = std::max(largest, std::fabs(sum_[i]));
            fits &= sum_[i] * sum_[i] <= diagonal * matrix_.diagonal[order_.order[i]];
        }
        if (diagonal <= threshold_.rounding && largest <= threshold_.rounding) return true;
        if (!fits) diagonal = std::max(diagonal, threshold_.missing);
        Column& column = columns_[k];
        const double root = std::sqrt(diagonal);
        column.row.push_back(k);
        column.val.push_back(root);
        for (int i : rows_) {
            if (sum_[i] == 0.0) continue;
            column.row.push_back(i);
            column.val.push_back(sum_[i] / root);
        }
        if (column.row.size() > 1) users_[column.row[1]].push_back(k);
        return true;
    }

    void append(int k, SumOfSquares& squares) const {
        const Column& column = columns_[k];
        if (column.row.empty()) return;
        for (int i : column.row) squares.col.push_back(names_[order_.order[i]]);
        squares.val.insert(squares.val.end(), column.val.begin(), column.val.end());
        squares.start.push_back(static_cast<int>(squares.col.size()));
    }

    bool run_full(SumOfSquares& squares, const std::function<void()>& go_on) {
        const int begin = order_.dense_from;
        std::vector<int> names;
        for (int k = begin; k < matrix_.size(); ++k) names.push_back(names_[order_.order[k]]);
        FullFactor full(std::move(names), threshold_);
        for (int k = begin; k < matrix_.size(); ++k) {
            const int v = order_.order[k];
            full.at(k - begin, k - begin) = matrix_.diagonal[v];
            for (int p = matrix_.pattern.start[v]; p < matrix_.pattern.start[v + 1]; ++p)
                if (const int i = place_[matrix_.pattern.col[p]]; i > k) full.at(i - begin, k - begin) = matrix_.val[p];
        }
        for (const Column& column : columns_) {
            for (std::size_t t = column.next; t < column.row.size(); ++t)
                for (std::size_t u = t; u < column.row.size(); ++u)
                    full.at(column.row[u] - begin, column.row[t] - begin) -= column.val[t] * column.val[u];
        }
        return full.run(squares, go_on);
    }

    const Symmetric& matrix_;
    const std::vector<int> names_;
    const Threshold& threshold_;
    const EliminationOrder order_;
    std::vector<int> place_;  // of a row in the order
    std::vector<Column> columns_;
    std::vector<std::vector<int>> users_;  // the columns whose next row is this one
    std::vector<double> sum_;
    std::vector<int> owner_;  // the column whose sum it is
    std::vector<int> rows_;
};

double largest_of(const std::vector<double>& values) {
    double largest = 0.0;
    for (double value : values) largest = std::max(largest, std::fabs(value));
    return largest;
}

}  // namespace

double value_of(const QuadView& terms, const double* x) {
    double sum = 0.0;
    for (std::size_t k = 0; k < terms.size(); ++k) sum += terms.val[k] * x[terms.row[k]] * x[terms.col[k]];
    return sum;
}

void add_gradient(const QuadView& terms, double factor, const double* x, double* gradient) {
    for (std::size_t k = 0; k < terms.size(); ++k) {
        const double value = factor * terms.val[k];
        gradient[terms.row[k]] += value * x[terms.col[k]];
        gradient[terms.col[k]] += value * x[terms.row[k]];
    }
}

std::optional<SumOfSquares> sum_of_squares(const QuadView& terms, double sign, double tolerance,
                                           const std::function<void()>& go_on) {
    const Form form = form_of(terms, sign);
    SumOfSquares squares;
    std::vector<int> place(form.columns.size());
    for (const std::vector<int>& part : connected_parts(form.matrix.pattern)) {
        const Symmetric matrix = part_of(form.matrix, part, place);
        std::vector<int> names;
        for (int v : part) names.push_back(form.columns[v]);
        const double largest = std::max(largest_of(matrix.diagonal), largest_of(matrix.val));
        const Threshold threshold(largest, matrix.size(), tolerance);
        if (!Factor(matrix, std::move(names), threshold).run(squares, go_on)) return std::nullopt;
    }
    return squares;
}

}  // namespace zelvan
