#include <algorithm>
#include <cmath>

#include "attr/readers.h"

namespace zelvan {

namespace {

int count_types(const Model& model, const char* letters) {
    const std::string_view set = letters;
    return static_cast<int>(std::count_if(model.data.cols.type.begin(), model.data.cols.type.end(),
                                          [&](char type) { return set.find(type) != set.npos; }));
}

struct Range {
    double smallest = kInfinity, largest = 0.0;

    void add(const std::vector<double>& values) {
        for (double value : values) {
            const double size = std::fabs(value);
            if (size == 0.0 || size >= kInfinityThreshold) continue;
            smallest = std::min(smallest, size);
            largest = std::max(largest, size);
        }
    }
    double minimum() const { return smallest < kInfinity ? smallest : 0.0; }
};

Range range_of(std::initializer_list<const std::vector<double>*> arrays) {
    Range range;
    for (const auto* array : arrays) range.add(*array);
    return range;
}

Range bound_range(const Model& m) { return range_of({&m.data.cols.lb, &m.data.cols.ub}); }

Range rhs_range(const Model& m) {
    const Rows& rows = m.data.rows;
    Range range = range_of({&rows.rhs});
    for (int i = 0; i < rows.size(); ++i)
        if (rows.sense[i] == 'R') range.add({rows.lower[i]});
    return range;
}

}  // namespace

double num_constrs(const Model& m) { return m.num_rows(); }

double num_vars(const Model& m) { return m.num_cols(); }

double num_sos(const Model& m) { return m.data.sos.size(); }

namespace {

double checked_count(std::int64_t count, const char* attribute, const char* instead) {
    if (count > ZVN_MAXINT)
        throw Error(ZVN_ERROR_EXCEED_2B_NONZEROS, std::string("Attribute '") + attribute +
                                                      "' doesn't fit an int: the model has " + std::to_string(count) +
                                                      " nonzeros" + instead);
    return static_cast<double>(count);
}

}  // namespace

double num_nonzeros(const Model& m) {
    return checked_count(m.data.rows.num_entries(), "NumNZs", ". Use attribute 'DNumNZs'");
}

double num_quad_rows(const Model& m) { return m.data.qrows.size(); }
double num_quad_objective_terms(const Model& m) { return static_cast<double>(m.data.quad_obj.size()); }
double num_quad_row_terms(const Model& m) { return checked_count(m.data.qrows.quad_start.back(), "NumQCNZs", ""); }

double num_nonzeros_dbl(const Model& m) { return static_cast<double>(m.data.rows.num_entries()); }

double num_integer_vars(const Model& m) { return count_types(m, "BIN"); }

double num_binary_vars(const Model& m) {
    const Columns& cols = m.data.cols;
    int count = 0;
    for (int j = 0; j < cols.size(); ++j)
        count += cols.type[j] == 'B' || (cols.type[j] == 'I' && cols.lb[j] == 0.0 && cols.ub[j] == 1.0);
    return count;
}

double num_pwl_vars(const Model& m) { return static_cast<double>(m.data.pwl_obj.size()); }

double num_starts(const Model& m) { return m.data.cols.optional.find(Option::kStart) ? 1.0 : 0.0; }

double none(const Model&) { return 0.0; }

const char* model_name(const Model& m) { return m.data.name.c_str(); }

double model_sense(const Model& m) { return m.data.sense; }

double objective_constant(const Model& m) { return m.data.obj_constant; }

double is_mip(const Model& m) { return m.data.is_mip(); }

double is_qp(const Model& m) { return !m.data.quad_obj.empty() && m.data.qrows.size() == 0; }

double is_qcp(const Model& m) { return m.data.qrows.size() > 0; }

double max_coeff(const Model& m) { return range_of({&m.data.rows.val}).largest; }
double min_coeff(const Model& m) { return range_of({&m.data.rows.val}).minimum(); }
double max_bound(const Model& m) { return bound_range(m).largest; }
double min_bound(const Model& m) { return bound_range(m).minimum(); }
double max_obj_coeff(const Model& m) { return range_of({&m.data.cols.obj}).largest; }
double min_obj_coeff(const Model& m) { return range_of({&m.data.cols.obj}).minimum(); }
double max_rhs(const Model& m) { return rhs_range(m).largest; }
double min_rhs(const Model& m) { return rhs_range(m).minimum(); }
double max_quad_rhs(const Model& m) { return range_of({&m.data.qrows.rhs}).largest; }
double min_quad_rhs(const Model& m) { return range_of({&m.data.qrows.rhs}).minimum(); }
double max_quad_coeff(const Model& m) { return range_of({&m.data.qrows.quad.val}).largest; }
double min_quad_coeff(const Model& m) { return range_of({&m.data.qrows.quad.val}).minimum(); }
double max_quad_linear_coeff(const Model& m) { return range_of({&m.data.qrows.val}).largest; }
double min_quad_linear_coeff(const Model& m) { return range_of({&m.data.qrows.val}).minimum(); }
double max_quad_obj_coeff(const Model& m) { return range_of({&m.data.quad_obj.val}).largest; }
double min_quad_obj_coeff(const Model& m) { return range_of({&m.data.quad_obj.val}).minimum(); }

}  // namespace zelvan
