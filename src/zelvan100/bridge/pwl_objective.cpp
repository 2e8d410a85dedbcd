#include "bridge/pwl_objective.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "core/error.h"

namespace zelvan {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
// Slopes that decrease by less than this, relatively, count as equal: they come from rounded points.
constexpr double kSlopeTolerance = 1e-9;
// How far beyond a jump at an end a column may be by the tolerances of a solve.
constexpr double kAtJump = 1e-5;

struct Segment {
    double width;  // infinite at an end of the function, negative infinite at its left end
    double slope;
};

// A convex piece: from `begin` its segments go to the right, one of infinite width to the left.
struct Piece {
    double begin, value;
    std::vector<Segment> segments;
};

struct Point {
    double x, y;
};

// f within [lower, upper], its ends prolonged as far as that; sides may be infinite.
class Function {
public:
    Function(const PwlPoints& points, double lower, double upper) : lower_(lower), upper_(upper) {
        for (const auto& [x, y] : points) points_.push_back({x, y});
        left_slope_ = end_slope(points_[0], points_[1]);
        right_slope_ = end_slope(points_[points_.size() - 2], points_.back());
        cut_left();
        cut_right();
    }

    // The interval on which the function exists, within the bounds that were given.
    double lower() const { return lower_; }
    double upper() const { return upper_; }
    bool has_points() const { return !points_.empty(); }

    std::vector<Piece> convex_pieces(double direction) const {
        std::vector<Piece> pieces;
        pieces.push_back({points_[0].x, points_[0].y, {}});
        if (std::isinf(lower_)) pieces.back().segments.push_back({-kInf, *left_slope_});
        double slope = left_slope_ && std::isinf(lower_) ? direction * *left_slope_ : -kInf;
        for (std::size_t k = 1; k < points_.size(); ++k) {
            const Point from = points_[k - 1], to = points_[k];
            if (to.x == from.x) {
                pieces.push_back({to.x, to.y, {}});
                slope = -kInf;
            } else {
                add_segment(pieces, from, {to.x - from.x, (to.y - from.y) / (to.x - from.x)}, direction, slope);
            }
        }
        if (std::isinf(upper_)) add_segment(pieces, points_.back(), {kInf, *right_slope_}, direction, slope);
        return pieces;
    }

private:
    // Without value where the function jumps at its end, and so ends there.
    static std::optional<double> end_slope(Point a, Point b) {
        if (a.x == b.x) return std::nullopt;
        return (b.y - a.y) / (b.x - a.x);
    }

    static double value_between(Point a, Point b, double x) { return a.y + (b.y - a.y) / (b.x - a.x) * (x - a.x); }

    void cut_left() {
        const Point first = points_.front();
        if (!left_slope_) lower_ = std::max(lower_, first.x);
        if (lower_ < first.x && std::isfinite(lower_))
            points_.insert(points_.begin(), {lower_, first.y + *left_slope_ * (lower_ - first.x)});
        std::size_t inside = 0;
        while (inside < points_.size() && points_[inside].x < lower_) ++inside;
        if (inside == 0) return;
        const Point last = points_[inside - 1];
        const bool beyond = inside == points_.size();
        if (beyond && !right_slope_) {
            points_.clear();
            return;
        }
        const double y =
            beyond ? last.y + *right_slope_ * (lower_ - last.x) : value_between(last, points_[inside], lower_);
        points_.erase(points_.begin(), points_.begin() + static_cast<std::ptrdiff_t>(inside));
        if (points_.empty() || points_.front().x > lower_) points_.insert(points_.begin(), {lower_, y});
    }

    void cut_right() {
        if (points_.empty()) return;
        const Point end = points_.back();
        if (!right_slope_) upper_ = std::min(upper_, end.x);
        if (upper_ > end.x && std::isfinite(upper_))
            points_.push_back({upper_, end.y + *right_slope_ * (upper_ - end.x)});
        std::size_t outside = points_.size();
        while (outside > 0 && points_[outside - 1].x > upper_) --outside;
        if (outside == points_.size()) return;
        const Point first = points_[outside];
        const bool beyond = outside == 0;
        if (beyond && (!left_slope_ || std::isfinite(lower_))) {
            points_.clear();
            return;
        }
        const double y =
            beyond ? first.y + *left_slope_ * (upper_ - first.x) : value_between(points_[outside - 1], first, upper_);
        points_.resize(outside);
        if (points_.empty() || points_.back().x < upper_) points_.push_back({upper_, y});
    }

    static void add_segment(std::vector<Piece>& pieces, Point from, Segment segment, double direction, double& slope) {
        const double steeper = direction * segment.slope;
        if (steeper < slope - kSlopeTolerance * std::max(1.0, std::abs(slope))) pieces.push_back({from.x, from.y, {}});
        pieces.back().segments.push_back(segment);
        slope = steeper;
    }

    std::vector<Point> points_;
    std::optional<double> left_slope_, right_slope_;
    double lower_, upper_;
};

void add_convex(Problem& problem, int j, const Piece& piece, double weight) {
    problem.offset += weight * piece.value;
    Problem::Terms terms{{j, 1.0}};
    for (const Segment& segment : piece.segments) {
        const bool left = segment.width < 0.0;
        const int d = problem.add_col(left ? -kInf : 0.0, left ? 0.0 : segment.width, weight * segment.slope, false);
        terms.emplace_back(d, -1.0);
    }
    problem.add_row(terms, piece.begin, piece.begin);
}

void add_pieces(Problem& problem, int j, const std::vector<Piece>& pieces, double weight) {
    Problem::Terms sum{{j, 1.0}}, one;
    for (const Piece& piece : pieces) {
        const int z = problem.add_col(0.0, 1.0, weight * piece.value, true);
        one.emplace_back(z, 1.0);
        if (piece.begin != 0.0) sum.emplace_back(z, -piece.begin);
        for (const Segment& segment : piece.segments) {
            const int d = problem.add_col(0.0, segment.width, weight * segment.slope, false);
            problem.add_row({{d, 1.0}, {z, -segment.width}}, -kInf, 0.0);
            sum.emplace_back(d, -1.0);
        }
    }
    problem.add_row(sum, 0.0, 0.0);
    problem.add_row(one, 1.0, 1.0);
}

bool is_unlimited(const std::vector<Piece>& pieces) {
    const auto infinite = [](const Segment& segment) { return std::isinf(segment.width); };
    return std::any_of(pieces.begin(), pieces.end(), [&](const Piece& piece) {
        return std::any_of(piece.segments.begin(), piece.segments.end(), infinite);
    });
}

void bridge_term(const ModelData& data, Problem& problem, int j, const PwlPoints& points, double weight,
                 Indicators& indicators) {
    const double direction = problem.sense * (weight < 0.0 ? -1.0 : 1.0);
    Function function(points, problem.lb[j], problem.ub[j]);
    if (function.has_points()) {
        std::vector<Piece> pieces = function.convex_pieces(direction);
        if (pieces.size() > 1 && is_unlimited(pieces)) {
            const auto [lower, upper] = indicators.range(j);
            function = Function(points, lower, upper);
            if (function.has_points()) pieces = function.convex_pieces(direction);
        }
        if (function.has_points()) {
            problem.lb[j] = std::max(problem.lb[j], function.lower());
            problem.ub[j] = std::min(problem.ub[j], function.upper());
            if (pieces.size() == 1) return add_convex(problem, j, pieces[0], weight);
            if (!is_unlimited(pieces)) return add_pieces(problem, j, pieces, weight);
            throw Error(ZVN_ERROR_NOT_SUPPORTED, "The piecewise-linear objective of variable '" + data.col_name(j) +
                                                     "' isn't convex, and the variable has no bounds: set finite ones");
        }
    }
    // No value of the variable lies where the function exists.
    problem.lb[j] = kInf;
}

}  // namespace

void bridge_pwl_objective(const ModelData& data, Problem& problem, Indicators& indicators) {
    const double weight = main_weight(data);
    for (const auto& [j, points] : data.pwl_obj) bridge_term(data, problem, j, points, weight, indicators);
}

double pwl_value(const PwlPoints& points, double x, double direction) {
    double best = direction * kInf;
    for (const auto& [at, value] : points)
        if (at == x && direction * value < direction * best) best = value;
    if (std::isfinite(best)) return best;
    // The segment around x, or the end segment that is prolonged to it.
    std::size_t right = 1;
    while (right + 1 < points.size() && points[right].first < x) ++right;
    if (points[right].first == points[right - 1].first)
        return std::abs(x - points[right].first) <= kAtJump ? points[right].second : direction * kInf;
    const auto [x0, y0] = points[right - 1];
    const auto [x1, y1] = points[right];
    return y0 + (y1 - y0) / (x1 - x0) * (x - x0);
}

}  // namespace zelvan
