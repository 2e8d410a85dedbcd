#include "attr/readers.h"

namespace zelvan {

namespace {

// Slopes never fall. A jump makes a function that is not convex.
bool convex(const PwlPoints& points) {
    double slope = -kInfinity;
    for (std::size_t k = 1; k < points.size(); ++k) {
        const double dx = points[k].first - points[k - 1].first, dy = points[k].second - points[k - 1].second;
        if (dx == 0.0 && dy == 0.0) continue;
        if (dx == 0.0 || dy / dx < slope) return false;
        slope = dy / dx;
    }
    return true;
}

}  // namespace

Values lower_bounds(const Model& m) { return Values::of(m.data.cols.lb); }
Values upper_bounds(const Model& m) { return Values::of(m.data.cols.ub); }
Values objective_coeffs(const Model& m) { return Values::of(m.data.cols.obj); }
Values types(const Model& m) { return Values::of(m.data.cols.type); }
Values senses(const Model& m) { return Values::of(m.data.rows.sense); }
Values right_sides(const Model& m) { return Values::of(m.data.rows.rhs); }
Values quad_senses(const Model& m) { return Values::of(m.data.qrows.sense); }
Values quad_right_sides(const Model& m) { return Values::of(m.data.qrows.rhs); }

double pwl_convex(const Model& m, int col) {
    const auto found = m.data.pwl_obj.find(col);
    return found == m.data.pwl_obj.end() || convex(found->second);
}

Values option_values(const Identity& family, Option option) {
    const std::vector<double>* values = family.optional.find(option);
    return values ? Values::of(*values) : Values::all(unset(option));
}

}  // namespace zelvan
