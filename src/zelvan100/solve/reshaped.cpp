#include "solve/reshaped.h"

#include <cmath>
#include <limits>

#include "solve/convexity.h"

namespace zelvan {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

void push_entry(Rows& rows, int col, double val) {
    rows.col.push_back(col);
    rows.val.push_back(val);
}

void add_rows(const Problem& original, bool two_sided, ModelData& model, std::vector<int>& kept) {
    for (int i = 0; i < original.num_rows(); ++i) {
        double lower = original.row_lower[i], upper = original.row_upper[i];
        if (std::isinf(lower) && std::isinf(upper)) continue;
        for (int k = original.start[i]; k < original.start[i + 1]; ++k)
            push_entry(model.rows, original.col()[k], original.val()[k]);
        if (two_sided && lower < upper && !std::isinf(lower) && !std::isinf(upper)) {
            push_entry(model.rows, model.cols.size(), -1.0);
            model.cols.push_back(lower, upper, 0.0, 'C', {});
            lower = upper = 0.0;
        }
        model.rows.push_back_range(lower, upper, {});
        kept.push_back(i);
    }
}

void add_square(int column, ModelData& model) {
    model.quad_obj.row.push_back(column);
    model.quad_obj.col.push_back(column);
    model.quad_obj.val.push_back(1.0);
}

// The active-set method of HiGHS 1.15 writes past the end of its factor once all columns were at bounds.
void add_column_between_bounds(ModelData& model) {
    model.cols.push_back(-kInf, kInf, 0.0, 'C', {});
    add_square(model.cols.size() - 1, model);
}

void add_squares(const SumOfSquares& squares, ModelData& model) {
    for (int k = 0; k < squares.size(); ++k) {
        const int square = model.cols.size();
        for (int p = squares.start[k]; p < squares.start[k + 1]; ++p)
            push_entry(model.rows, squares.col[p], squares.val[p]);
        push_entry(model.rows, square, -1.0);
        model.rows.push_back_range(0.0, 0.0, {});
        model.cols.push_back(-kInf, kInf, 0.0, 'C', {});
        add_square(square, model);
    }
}

ModelData model_of(const Problem& original, Reshaped::Shape shape, std::vector<int>& kept) {
    ModelData model;
    for (int j = 0; j < original.num_cols(); ++j)
        model.cols.push_back(original.lb[j], original.ub[j], original.sense * original.cost[j], 'C', {});
    add_rows(original, shape != Reshaped::Shape::kActiveSet, model, kept);
    if (shape == Reshaped::Shape::kSquares) {
        add_squares(*original.squares, model);
        return model;
    }
    model.quad_obj = original.quad;
    for (double& value : model.quad_obj.val) value *= original.sense;
    if (shape == Reshaped::Shape::kActiveSet) add_column_between_bounds(model);
    return model;
}

}  // namespace

Reshaped::Reshaped(const Problem& original, Shape shape)
    : original_(original), model_(model_of(original, shape, rows_)), problem_(model_) {}

std::vector<double> Reshaped::multipliers(const std::vector<double>& pi) const {
    std::vector<double> found(original_.num_rows(), 0.0);
    std::vector<double> own = pi;
    problem_.unscale(own);
    for (std::size_t i = 0; i < rows_.size(); ++i) found[rows_[i]] = original_.sense * own[i];
    return found;
}

}  // namespace zelvan
