#include "bridge/quadratic.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "bridge/perspective.h"
#include "core/error.h"
#include "solve/convexity.h"

namespace zelvan {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
// Bounds of a factor from here on are none.
constexpr double kLargestFactor = 1e10;
// A column above this is taken for one that isn't negative.
constexpr double kNotNegative = -1e-9;

// A limit or a stop.
struct Stopped {};

// A quadratic expression that is to be at most `right`, or as small as possible.
struct Form {
    QuadTerms quad;
    Problem::Terms linear;
    double right = 0.0;
    bool is_equality = false, is_objective = false;
    int divisor = -1;  // the column that all was divided by
    std::string noun;  // "Quadratic constraint 'c'" or "The quadratic objective"
};

QuadTerms terms_of(const QuadRows& rows, int i, double sign) {
    QuadTerms terms;
    for (std::int64_t k = rows.quad_start[i]; k < rows.quad_start[i + 1]; ++k) {
        terms.row.push_back(rows.quad.row[k]);
        terms.col.push_back(rows.quad.col[k]);
        terms.val.push_back(sign * rows.quad.val[k]);
    }
    return terms;
}

// The sum of squares of a form, in the columns and cones of a problem.
class Quadratics {
public:
    Quadratics(const ModelData& data, Problem& problem, Indicators& indicators, Context& context)
        : data_(data), problem_(problem), indicators_(indicators), context_(context), params_(context.params) {}

    QuadraticCounts counts;

    // The linear form that is left: its columns stand for the squares and products.
    Form linear(Form form) {
        if (form.is_equality) {
            linearize_products(form);
            if (!form.quad.empty()) add_products(form);
            return form;
        }
        if (params_.get_int(Param::PreQLinearize) == 1) linearize_products(form);
        if (add_squares(form) || add_cone(form)) return form;
        if (params_.get_int(Param::PreQLinearize) != 0) {
            linearize_products(form);
            if (form.quad.empty() || add_squares(form) || add_cone(form)) return form;
        }
        add_products(form);
        return form;
    }

private:
    // Where a column that stands for a square is held to it.
    enum class Sides { kAbove, kBoth };

    bool is_binary(int j) const { return problem_.integer[j] && problem_.lb[j] >= 0.0 && problem_.ub[j] <= 1.0; }

    bool add_squares(Form& form) {
        QuadTerms rest = form.quad;
        std::vector<std::pair<int, double>> switched = take_diagonal(rest, switches());
        std::optional<SumOfSquares> squares = squares_of(rest);
        if (!squares && !switched.empty()) {
            switched.clear();
            squares = squares_of(form.quad);
        }
        if (!squares) return false;
        for (const auto& [j, value] : switched) form.linear.emplace_back(square_of(j, switches().at(j)), value);
        add(*squares, -1, form.linear);
        form.quad = {};
        ++counts.convex;
        return true;
    }

    const Switches& switches() {
        if (!found_switches_) found_switches_ = switches_of(problem_);
        return *found_switches_;
    }

    std::optional<SumOfSquares> squares_of(const QuadTerms& terms) const {
        const auto go_on = [this] {
            if (context_.monitor.poll() == Answer::kStop || context_.monitor.time_left() <= 0.0) throw Stopped();
        };
        return sum_of_squares(terms, 1.0, params_.get_dbl(Param::PSDTol), go_on);
    }

    // The sum of the squares, divided by column z.
    void add(const SumOfSquares& squares, int z, Problem::Terms& linear) {
        for (int k = 0; k < squares.size(); ++k) {
            const int begin = squares.start[k], end = squares.start[k + 1];
            if (end == begin + 1) {
                linear.emplace_back(square_of(squares.col[begin], z), squares.val[begin] * squares.val[begin]);
                continue;
            }
            Problem::Terms terms;
            for (int e = begin; e < end; ++e) terms.emplace_back(squares.col[e], squares.val[e]);
            linear.emplace_back(square_of(col_of(std::move(terms)), z), 1.0);
        }
    }

    // The column that is at least the square of a column, divided by column z.
    int square_of(int y, int z) {
        const auto [at, is_new] = squares_.try_emplace({y, z}, 0);
        if (is_new) {
            at->second = problem_.add_col(0.0, kInf, 0.0, false);
            problem_.cones.push_back({at->second, y, z});
        }
        return at->second;
    }

    // A column of that value.
    int col_of(Problem::Terms terms) {
        const int y = problem_.add_col(-kInf, kInf, 0.0, false);
        terms.emplace_back(y, -1.0);
        problem_.add_row(terms, 0.0, 0.0);
        return y;
    }

    int constant_col(double value) { return problem_.add_col(value, value, 0.0, false); }

    bool is_not_negative(int j) { return indicators_.range(j).lower >= kNotNegative; }

    // The term with a negative coefficient whose columns are in no other term: of z^2, or of u v, neither negative.
    int apex_of(const Form& form) {
        int apex = -1;
        for (std::size_t k = 0; k < form.quad.size(); ++k) {
            if (form.quad.val[k] >= 0.0 || !is_not_negative(form.quad.row[k]) || !is_not_negative(form.quad.col[k]))
                continue;
            const auto shares = [&](std::size_t other) {
                return other != k &&
                       (form.quad.row[other] == form.quad.row[k] || form.quad.col[other] == form.quad.row[k] ||
                        form.quad.row[other] == form.quad.col[k] || form.quad.col[other] == form.quad.col[k]);
            };
            bool is_alone = true;
            for (std::size_t other = 0; other < form.quad.size() && is_alone; ++other) is_alone = !shares(other);
            if (!is_alone) continue;
            if (apex >= 0) return -1;
            apex = static_cast<int>(k);
        }
        return apex;
    }

    bool add_cone(Form& form) {
        if (form.is_objective || !form.linear.empty() || form.right > 0.0) return false;
        const int apex = apex_of(form);
        if (apex < 0) return false;
        QuadTerms rest;
        for (int k = 0; k < static_cast<int>(form.quad.size()); ++k) {
            if (k == apex) continue;
            rest.row.push_back(form.quad.row[k]);
            rest.col.push_back(form.quad.col[k]);
            rest.val.push_back(form.quad.val[k]);
        }
        const std::optional<SumOfSquares> squares = squares_of(rest);
        if (!squares) return false;
        const int u = form.quad.row[apex], v = form.quad.col[apex];
        form.linear.emplace_back(u, form.quad.val[apex]);
        add(*squares, v, form.linear);
        form.divisor = v;
        if (form.right < 0.0) form.linear.emplace_back(square_of(constant_col(std::sqrt(-form.right)), v), 1.0);
        form.right = 0.0;
        form.quad = {};
        ++counts.cones;
        return true;
    }

    // Replaces each product with a binary factor, the square of a binary too.
    void linearize_products(Form& form) {
        QuadTerms rest;
        for (std::size_t k = 0; k < form.quad.size(); ++k) {
            int binary = form.quad.row[k], other = form.quad.col[k];
            if (!is_binary(binary)) std::swap(binary, other);
            const double value = form.quad.val[k];
            if (!is_binary(binary) || (binary != other && !has_small_range(other))) {
                rest.row.push_back(form.quad.row[k]);
                rest.col.push_back(form.quad.col[k]);
                rest.val.push_back(value);
                continue;
            }
            form.linear.emplace_back(binary == other ? binary : product_of(binary, other), value);
        }
        form.quad = std::move(rest);
    }

    // What isn't convex: squares that count on one side only are cones there, all else is branched on.
    void add_products(Form& form) {
        const int non_convex = params_.get_int(Param::NonConvex);
        if (non_convex == 0 || non_convex == 1)
            throw Error(ZVN_ERROR_Q_NOT_PSD,
                        form.noun + " isn't convex, and NonConvex is " + std::to_string(non_convex));
        for (std::size_t k = 0; k < form.quad.size(); ++k) {
            const int x = form.quad.row[k], y = form.quad.col[k];
            const double value = form.quad.val[k];
            const bool is_square = x == y && !form.is_equality;
            const int w = is_square && value > 0.0
                              ? square_of(x, -1)
                              : factored(x, y, is_square ? Sides::kAbove : Sides::kBoth, form.noun);
            form.linear.emplace_back(w, value);
        }
        form.quad = {};
        ++counts.non_convex;
    }

    // Gives the column the bounds that are implied, or says that there are none.
    void bound(int j, const std::string& noun) {
        const auto [lower, upper] = range_of(j);
        if (std::fabs(lower) >= kLargestFactor || std::fabs(upper) >= kLargestFactor)
            throw Error(ZVN_ERROR_Q_NOT_PSD, noun + " isn't convex, and variable '" + data_.col_name(j) +
                                                 "' in its products has no bounds that the constraints imply");
        problem_.lb[j] = std::max(problem_.lb[j], lower);
        problem_.ub[j] = std::min(problem_.ub[j], upper);
    }

    // The column that is the product of two, by branching.
    int factored(int x, int y, Sides sides, const std::string& noun) {
        const auto [at, is_new] = factored_.try_emplace({x, y}, 0);
        if (is_new) {
            ++counts.products;
            for (int j : {x, y}) bound(j, noun);
            const auto square = x == y ? squares_.find({x, -1}) : squares_.end();
            at->second = square == squares_.end() ? problem_.add_col(-kInf, kInf, 0.0, false) : square->second;
            problem_.disjunctions.products.push_back({at->second, x, y});
        }
        if (x == y && sides == Sides::kBoth) {
            const auto [square, has_none] = squares_.try_emplace({x, -1}, at->second);
            if (has_none || square->second != at->second) problem_.cones.push_back({at->second, x, -1});
            square->second = at->second;
        }
        return at->second;
    }

    bool has_small_range(int j) { return is_binary(j) || range_of(j).is_small(); }
    Interval range_of(int j) { return is_binary(j) ? Interval{0.0, 1.0} : indicators_.range(j); }

    int product_of(int binary, int other) {
        const auto [at, is_new] = products_.try_emplace(std::minmax(binary, other), 0);
        if (!is_new) return at->second;
        ++counts.products;
        const auto [lower, upper] = range_of(other);
        const int w = problem_.add_col(std::min(lower, 0.0), std::max(upper, 0.0), 0.0, false);
        problem_.add_row({{w, 1.0}, {binary, -upper}}, -kInf, 0.0);
        problem_.add_row({{w, 1.0}, {binary, -lower}}, 0.0, kInf);
        problem_.add_row({{w, 1.0}, {other, -1.0}, {binary, -lower}}, -kInf, -lower);
        problem_.add_row({{w, 1.0}, {other, -1.0}, {binary, -upper}}, -upper, kInf);
        return at->second = w;
    }

    const ModelData& data_;
    Problem& problem_;
    Indicators& indicators_;
    Context& context_;
    const ParamValues& params_;
    std::optional<Switches> found_switches_;
    std::map<std::pair<int, int>, int> squares_;   // by column and divisor
    std::map<std::pair<int, int>, int> products_;  // with a binary factor, by both factors
    std::map<std::pair<int, int>, int> factored_;  // those that are branched on
};

Problem::Terms merged(Problem::Terms terms) {
    std::sort(terms.begin(), terms.end());
    Problem::Terms result;
    for (const auto& [j, value] : terms) {
        if (!result.empty() && result.back().first == j)
            result.back().second += value;
        else
            result.emplace_back(j, value);
    }
    std::erase_if(result, [](const auto& term) { return term.second == 0.0; });
    return result;
}

Form form_of(const ModelData& data, int i, double sign) {
    const QuadRows& rows = data.qrows;
    Form form{terms_of(rows, i, sign),
              {},
              sign * rows.rhs[i],
              rows.sense[i] == '=',
              false,
              -1,
              "Quadratic constraint '" + data.name_of(Kind::kQuadRow, i) + "'"};
    for (std::int64_t k = rows.start[i]; k < rows.start[i + 1]; ++k)
        form.linear.emplace_back(rows.col[k], sign * rows.val[k]);
    return form;
}

}  // namespace

QuadraticCounts bridge_quadratic(const ModelData& data, Problem& problem, Indicators& indicators, Context& context) {
    Quadratics quadratics(data, problem, indicators, context);
    try {
        for (int i = 0; i < data.qrows.size(); ++i) {
            const double sign = data.qrows.sense[i] == '>' ? -1.0 : 1.0;
            const Form form = quadratics.linear(form_of(data, i, sign));
            problem.lifted_rows.push_back({problem.num_rows(), sign, form.divisor});
            problem.add_row(merged(form.linear), form.is_equality ? form.right : -kInf, form.right);
        }
        if (problem.quad.empty()) return quadratics.counts;
        Form form{std::exchange(problem.quad, {}), {}, 0.0, false, true, -1, "The quadratic objective"};
        for (double& value : form.quad.val) value *= problem.sense;
        for (const auto& [j, value] : quadratics.linear(std::move(form)).linear)
            problem.cost[j] += problem.sense * value;
    } catch (const Stopped&) {
        // So will the search be.
    }
    return quadratics.counts;
}

}  // namespace zelvan
