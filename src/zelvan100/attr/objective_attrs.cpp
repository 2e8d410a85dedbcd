#include "attr/readers.h"
#include "solve/check.h"

namespace zelvan {

namespace {

// The objective that parameter ObjNumber selects, as a model with one objective has it too.
const Objective& selected(const Model& m) {
    static const Objective only;
    const int number = m.env.params.get_int(Param::ObjNumber);
    if (number >= num_objectives(m))
        throw missing("parameter ObjNumber is " + std::to_string(number) + ", but the model has " +
                      std::to_string(static_cast<int>(num_objectives(m))) + " objectives");
    return m.data.objectives.empty() ? only : m.data.objectives[number];
}

bool first_selected(const Model& m) { return m.env.params.get_int(Param::ObjNumber) == 0; }

}  // namespace

bool is_multi_objective(const Model& m) { return m.data.objectives.size() > 1; }

double is_multi_objective_number(const Model& m) { return is_multi_objective(m); }

double num_objectives(const Model& m) {
    return m.data.objectives.empty() ? 1.0 : static_cast<double>(m.data.objectives.size());
}

double objective_n(const Model& m, int col) {
    const Objective& objective = selected(m);
    return first_selected(m) ? m.data.cols.obj[col] : objective.coeff.at(col);
}

double objective_n_constant(const Model& m) {
    const Objective& objective = selected(m);
    return first_selected(m) ? m.data.obj_constant : objective.constant;
}

double objective_n_priority(const Model& m) { return selected(m).priority; }
double objective_n_weight(const Model& m) { return selected(m).weight; }
double objective_n_rel_tol(const Model& m) { return selected(m).rel_tol; }
double objective_n_abs_tol(const Model& m) { return selected(m).abs_tol; }
const char* objective_n_name(const Model& m) { return selected(m).name.c_str(); }

double objective_n_value(const Model& m) {
    const Objective& objective = selected(m);
    const int number = m.env.params.get_int(Param::SolutionNumber);
    if (!is_multi_objective(m)) return pool_objective_value(m);
    if (number == 0 && !m.solution.multi_obj.empty())
        return m.solution.multi_obj[&objective - m.data.objectives.data()];
    const double* x = pool_values(m).doubles;
    if (first_selected(m)) return main_objective(m.data, x);
    double value = objective.constant;
    for (std::size_t k = 0; k < objective.coeff.col.size(); ++k)
        value += objective.coeff.val[k] * x[objective.coeff.col[k]];
    return value;
}

}  // namespace zelvan
