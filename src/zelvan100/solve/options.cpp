#include "solve/options.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zelvan {

namespace {

constexpr int kMaxInt = std::numeric_limits<int>::max();

int clamped(double value) { return value >= kMaxInt ? kMaxInt : static_cast<int>(value); }

struct IntOption {
    const char* name;
    Param param;
};
constexpr IntOption kIntOptions[] = {
    {"random_seed", Param::Seed},
};

struct DoubleOption {
    const char* name;
    Param param;
    double minimum;
};
constexpr DoubleOption kDoubleOptions[] = {
    {"ipm_optimality_tolerance", Param::BarConvTol, 1e-12},
    {"mip_rel_gap", Param::MIPGap, 0.0},
    {"mip_abs_gap", Param::MIPGapAbs, 0.0},
    {"mip_heuristic_effort", Param::Heuristics, 0.0},
};

// HiGHS is at its best with its own tolerances, which are tighter than our defaults.
double tolerance(const ParamValues& params, Param param, double of_highs) {
    return params.is_default(static_cast<int>(param)) ? of_highs : params.get_dbl(param);
}

// Options that take one of several values: entry 0 for the parameter's value `first`.
struct ChoiceOption {
    const char* name;
    Param param;
    int first;
    int values[7];
};
constexpr ChoiceOption kChoiceOptions[] = {
    {"simplex_scale_strategy", Param::ScaleFlag, -1, {2, 0, 2, 3, 4}},
    {"simplex_dual_edge_weight_strategy", Param::SimplexPricing, -1, {-1, 0, 2, 1, 2}},
    // Steepest edge of the primal simplex is unfinished in HiGHS: devex comes closest.
    {"simplex_primal_edge_weight_strategy", Param::SimplexPricing, -1, {-1, 0, 1, 1, 1}},
    {"simplex_strategy", Param::Method, -1, {1, 4, 1, 1, 1, 1, 1}},
    {"simplex_update_limit", Param::NumericFocus, 0, {5000, 1000, 200, 50}},
};

struct TextOption {
    const char* name;
    Param param;
    int first;
    const char* values[7];
};
constexpr TextOption kTextOptions[] = {
    {"presolve", Param::Presolve, -1, {"choose", "off", "on", "on"}},
    {"run_crossover", Param::Crossover, -1, {"on", "off", "on", "on", "on", "on", "on"}},
    {"solver", Param::Method, -1, {"choose", "simplex", "simplex", "ipx", "choose", "simplex", "simplex"}},
    {"mip_lp_solver", Param::Method, -1, {"choose", "simplex", "simplex", "ipx", "choose", "simplex", "simplex"}},
};

double pivot_threshold(const ParamValues& params) {
    constexpr double kByFocus[] = {0.1, 0.2, 0.35, 0.5};
    if (params.is_default(static_cast<int>(Param::MarkowitzTol))) return kByFocus[params.get_int(Param::NumericFocus)];
    return std::clamp(params.get_dbl(Param::MarkowitzTol), 8e-4, 0.5);
}

// HiGHS counts single reductions where we have passes: a pass is taken for one on each 20th row or column.
void set_presolve_passes(HighsSession& session, int passes, const Problem& model) {
    if (passes == 0) session.set_option("presolve", "off");
    const double reductions = std::ceil(passes * (static_cast<double>(model.num_cols()) + model.num_rows()) / 20.0);
    session.set_option("presolve_reduction_limit", passes > 0 ? clamped(reductions) : -1);
}

void set_care(HighsSession& session, const ParamValues& params, const Care& care) {
    if (care.part_of_gap != 1.0) {
        session.set_option("mip_rel_gap", care.part_of_gap * params.get_dbl(Param::MIPGap));
        session.set_option("mip_abs_gap", care.part_of_gap * params.get_dbl(Param::MIPGapAbs));
    }
    if (care.tight) {
        session.set_option("primal_feasibility_tolerance", 1e-9);
        session.set_option("mip_feasibility_tolerance", 1e-10);
    }
    if (!care.presolve) session.set_option("presolve", "off");
    if (care.simplex) session.set_option("solver", "simplex");
    if (care.node) session.set_option("output_flag", false);
}

}  // namespace

void set_options(HighsSession& session, const ParamValues& params, const Problem& model, const Care& care) {
    for (const auto& option : kIntOptions) session.set_option(option.name, params.get_int(option.param));
    for (const auto& option : kDoubleOptions)
        session.set_option(option.name, std::max(option.minimum, params.get_dbl(option.param)));
    for (const auto& option : kChoiceOptions)
        session.set_option(option.name, option.values[params.get_int(option.param) - option.first]);
    for (const auto& option : kTextOptions)
        session.set_option(option.name, option.values[params.get_int(option.param) - option.first]);

    session.set_option("primal_feasibility_tolerance", tolerance(params, Param::FeasibilityTol, 1e-7));
    session.set_option("dual_feasibility_tolerance", tolerance(params, Param::OptimalityTol, 1e-7));
    // HiGHS holds rows of a MIP to its integrality tolerance, so the tighter one serves both.
    session.set_option("mip_feasibility_tolerance",
                       std::min(tolerance(params, Param::IntFeasTol, 1e-6), params.get_dbl(Param::FeasibilityTol)));
    session.set_option("mip_min_logging_interval", static_cast<double>(params.get_int(Param::DisplayInterval)));
    session.set_option("factor_pivot_threshold", pivot_threshold(params));
    session.set_option("mip_detect_symmetry", params.get_int(Param::Symmetry) != 0);
    if (const int fill = params.get_int(Param::AggFill); fill >= 0)
        session.set_option("presolve_substitution_maxfillin", fill);
    else
        session.set_option("presolve_substitution_maxfillin", 10);
    session.set_option("allow_unbounded_or_infeasible",
                       params.get_int(Param::DualReductions) != 0 && params.get_int(Param::InfUnbdInfo) == 0);
    session.set_option("output_flag", params.get_int(Param::OutputFlag) && (params.get_int(Param::LogToConsole) ||
                                                                            !params.get_str(Param::LogFile).empty()));
    // HiGHS drops entries up to this; where there are none its presolve keeps its own value.
    session.set_option("small_matrix_value", model.has_small_entries() ? 1e-12 : 1e-9);
    set_presolve_passes(session, params.get_int(Param::PrePasses), model);
    set_care(session, params, care);
}

}  // namespace zelvan
