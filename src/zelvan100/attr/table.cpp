// The table of all attributes, in the order of names.inc.

#include <array>

#include "attr/readers.h"
#include "core/name_index.h"
#include "solve/kappa.h"

namespace zelvan {

namespace {

// All names in one array, each with its NUL, so that a pointer into it tells the attribute.
constexpr char kNamePool[] =
#define ZELVAN_ATTR(name) #name "\0"
#include "attr/names.inc"
#undef ZELVAN_ATTR
    ;
constexpr std::size_t kCount = 0
#define ZELVAN_ATTR(name) +1
#include "attr/names.inc"
#undef ZELVAN_ATTR
    ;

constexpr std::array<const char*, kCount> kNames = [] {
    std::array<const char*, kCount> names{};
    std::size_t at = 0;
    for (auto& name : names) {
        name = kNamePool + at;
        at += std::string_view(name).size() + 1;
    }
    return names;
}();

// Number of the attribute whose name starts at an offset of the pool, -1 within a name.
constexpr std::array<std::int16_t, sizeof kNamePool> kAtOffset = [] {
    std::array<std::int16_t, sizeof kNamePool> at{};
    for (auto& number : at) number = -1;
    for (std::size_t i = 0; i < kCount; ++i) at[kNames[i] - kNamePool] = static_cast<std::int16_t>(i);
    return at;
}();

constexpr NameIndex<kCount> kIndex{kNames};

constexpr double kMaxInt = 2147483647;

using Number = double (*)(const Model&);

constexpr AttrSpec model_int(const char* name, Number read) { return {name, kInt, Kind::kModel, false, read}; }
constexpr AttrSpec model_dbl(const char* name, Number read) { return {name, kDouble, Kind::kModel, false, read}; }
constexpr AttrSpec model_str(const char* name, const char* (*read)(const Model&)) {
    return {name, kString, Kind::kModel, false, nullptr, read};
}
constexpr AttrSpec column(const char* name, AttrType type, Values (*read)(const Model&), Kind kind = Kind::kColumn) {
    return {name, type, kind, false, nullptr, nullptr, read};
}
constexpr AttrSpec row(const char* name, AttrType type, Values (*read)(const Model&)) {
    return column(name, type, read, Kind::kRow);
}
constexpr AttrSpec texts(const char* name, Kind kind, Texts (*read)(const Model&)) {
    return {name, kString, kind, false, nullptr, nullptr, nullptr, nullptr, read};
}
// Where there is nothing to read (yet), and why.
constexpr AttrSpec absent(const char* name, AttrType type, Kind kind, const char* why, bool settable = false) {
    AttrSpec spec{name, type, kind, settable};
    spec.why = why;
    return spec;
}

constexpr const char* kNoIis = "no infeasible subsystem has been computed";
constexpr const char* kNoSensitivity = "no sensitivity information has been computed";
constexpr const char* kNoScenarios = "the model has no scenarios";
constexpr const char* kNoBatch = "it belongs to batches, not to models";
constexpr const char* kNoPresolved = "no presolved model has been kept";
constexpr const char* kNoObject = "the model has no object of this kind";

constexpr AttrSpec kAttrs[] = {
    // Model
    model_int("NumConstrs", num_constrs),
    model_int("NumVars", num_vars),
    model_int("NumSOS", num_sos),
    model_int("NumQConstrs", num_quad_rows),
    model_int("NumGenConstrs", none),
    model_int("NumNZs", num_nonzeros),
    model_dbl("DNumNZs", num_nonzeros_dbl),
    model_int("NumQNZs", num_quad_objective_terms),
    model_int("NumQCNZs", num_quad_row_terms),
    model_int("NumIntVars", num_integer_vars),
    model_int("NumBinVars", num_binary_vars),
    model_int("NumPWLObjVars", num_pwl_vars),
    model_str("ModelName", model_name).set_text(ZVN_MAX_NAMELEN, rules::kModelName),
    model_int("ModelSense", model_sense).set(-1, 1, rules::kModelSense),
    model_dbl("ObjCon", objective_constant).set(-kLargestFinite, kLargestFinite, rules::kConstant),
    model_int("IsMIP", is_mip),
    model_int("IsQP", is_qp),
    model_int("IsQCP", is_qcp),
    model_int("IsMultiObj", is_multi_objective_number),
    absent("IISMinimal", kInt, Kind::kModel, kNoIis),
    model_dbl("Kappa", condition_estimate).when(has_basis),
    model_dbl("KappaExact", condition).when(has_basis),
    model_dbl("MaxCoeff", max_coeff),
    model_dbl("MinCoeff", min_coeff),
    model_dbl("MaxBound", max_bound),
    model_dbl("MinBound", min_bound),
    model_dbl("MaxObjCoeff", max_obj_coeff),
    model_dbl("MinObjCoeff", min_obj_coeff),
    model_dbl("MaxRHS", max_rhs),
    model_dbl("MinRHS", min_rhs),
    model_dbl("MaxQCRHS", max_quad_rhs),
    model_dbl("MinQCRHS", min_quad_rhs),
    model_dbl("MaxQCCoeff", max_quad_coeff),
    model_dbl("MinQCCoeff", min_quad_coeff),
    model_dbl("MaxQCLCoeff", max_quad_linear_coeff),
    model_dbl("MinQCLCoeff", min_quad_linear_coeff),
    model_dbl("MaxQObjCoeff", max_quad_obj_coeff),
    model_dbl("MinQObjCoeff", min_quad_obj_coeff),
    model_dbl("ObjVal", objective_value),
    model_dbl("ObjBound", objective_bound),
    model_dbl("ObjBoundC", objective_bound),
    model_dbl("PoolObjBound", objective_bound),
    model_dbl("PoolObjVal", pool_objective_value),
    model_dbl("MIPGap", mip_gap),
    model_dbl("Runtime", runtime),
    model_dbl("Work", work),
    model_int("Status", status),
    model_int("SolCount", solution_count),
    model_dbl("IterCount", iteration_count),
    model_dbl("NodeCount", node_count),
    model_int("BarIterCount", barrier_iteration_count),
    model_dbl("FarkasProof", farkas_proof),
    model_int("NumStart", num_starts).set(0, 1, rules::kNumStarts),
    model_int("TuneResultCount", none),
    model_int("Fingerprint", fingerprint),
    model_int("ConcurrentWinMethod", concurrent_winner),

    // Variables
    column("LB", kDouble, lower_bounds).set(-kInfinity, kLargestFinite, rules::kLowerBound),
    column("UB", kDouble, upper_bounds).set(-kLargestFinite, kInfinity, rules::kUpperBound),
    column("Obj", kDouble, objective_coeffs).set(-kLargestFinite, kLargestFinite, rules::kCost),
    column("VType", kChar, types).set("CBISN", rules::kType),
    texts("VarName", Kind::kColumn, names<Kind::kColumn>).set_text(ZVN_MAX_NAMELEN, rules::kColumnName),
    column("X", kDouble, primal_values),
    column("RC", kDouble, reduced_costs),
    column("Xn", kDouble, pool_values),
    column("BarX", kDouble, barrier_values),
    column("Start", kDouble, option_of<Kind::kColumn, Option::kStart>)
        .set(-kUndefined, kUndefined, rules::kOption<Kind::kColumn, Option::kStart>),
    column("VarHintVal", kDouble, option_of<Kind::kColumn, Option::kHintValue>)
        .set(-kUndefined, kUndefined, rules::kOption<Kind::kColumn, Option::kHintValue>),
    column("VarHintPri", kInt, option_of<Kind::kColumn, Option::kHintPriority>)
        .set(-kMaxInt, kMaxInt, rules::kOption<Kind::kColumn, Option::kHintPriority>),
    column("BranchPriority", kInt, option_of<Kind::kColumn, Option::kBranchPriority>)
        .set(-kMaxInt, kMaxInt, rules::kOption<Kind::kColumn, Option::kBranchPriority>),
    column("Partition", kInt, option_of<Kind::kColumn, Option::kPartition>)
        .set(-1, kMaxInt, rules::kOption<Kind::kColumn, Option::kPartition>),
    column("VBasis", kInt, column_basis)
        .set(ZVN_SUPERBASIC, ZVN_BASIC, rules::kOption<Kind::kColumn, Option::kColumnBasis>),
    {"PWLObjCvx", kInt, Kind::kColumn, false, nullptr, nullptr, nullptr, pwl_convex},
    column("PoolIgnore", kInt, option_of<Kind::kColumn, Option::kPoolIgnore>)
        .set(0, 1, rules::kOption<Kind::kColumn, Option::kPoolIgnore>),
    absent("IISLB", kInt, Kind::kColumn, kNoIis),
    absent("IISUB", kInt, Kind::kColumn, kNoIis),
    column("IISLBForce", kInt, option_of<Kind::kColumn, Option::kIisLowerForce>)
        .set(-1, 1, rules::kOption<Kind::kColumn, Option::kIisLowerForce>),
    column("IISUBForce", kInt, option_of<Kind::kColumn, Option::kIisUpperForce>)
        .set(-1, 1, rules::kOption<Kind::kColumn, Option::kIisUpperForce>),
    absent("SAObjLow", kDouble, Kind::kColumn, kNoSensitivity),
    absent("SAObjUp", kDouble, Kind::kColumn, kNoSensitivity),
    absent("SALBLow", kDouble, Kind::kColumn, kNoSensitivity),
    absent("SALBUp", kDouble, Kind::kColumn, kNoSensitivity),
    absent("SAUBLow", kDouble, Kind::kColumn, kNoSensitivity),
    absent("SAUBUp", kDouble, Kind::kColumn, kNoSensitivity),
    column("UnbdRay", kDouble, unbounded_ray),
    column("PStart", kDouble, option_of<Kind::kColumn, Option::kPrimalStart>)
        .set(-kUndefined, kUndefined, rules::kOption<Kind::kColumn, Option::kPrimalStart>),
    absent("PreFixVal", kDouble, Kind::kColumn, kNoPresolved),
    absent("VarPreStat", kInt, Kind::kColumn, kNoPresolved),
    texts("VTag", Kind::kColumn, tags<Kind::kColumn>).set_text(ZVN_MAX_TAGLEN, rules::kColumnTag),

    // Linear constraints
    row("Sense", kChar, senses).set("<>=", rules::kSense),
    row("RHS", kDouble, right_sides).set(-kInfinity, kInfinity, rules::kRightSide),
    texts("ConstrName", Kind::kRow, names<Kind::kRow>).set_text(ZVN_MAX_NAMELEN, rules::kRowName),
    row("Pi", kDouble, duals),
    row("Slack", kDouble, slacks),
    row("CBasis", kInt, row_basis).set(ZVN_SUPERBASIC, ZVN_BASIC, rules::kOption<Kind::kRow, Option::kRowBasis>),
    absent("IISConstr", kInt, Kind::kRow, kNoIis),
    row("IISConstrForce", kInt, option_of<Kind::kRow, Option::kIisForce>)
        .set(-1, 1, rules::kOption<Kind::kRow, Option::kIisForce>),
    absent("SARHSLow", kDouble, Kind::kRow, kNoSensitivity),
    absent("SARHSUp", kDouble, Kind::kRow, kNoSensitivity),
    row("FarkasDual", kDouble, farkas_dual),
    row("DStart", kDouble, option_of<Kind::kRow, Option::kDualStart>)
        .set(-kUndefined, kUndefined, rules::kOption<Kind::kRow, Option::kDualStart>),
    row("Lazy", kInt, option_of<Kind::kRow, Option::kLazy>).set(-1, 3, rules::kOption<Kind::kRow, Option::kLazy>),
    texts("CTag", Kind::kRow, tags<Kind::kRow>).set_text(ZVN_MAX_TAGLEN, rules::kRowTag),

    // SOS
    absent("IISSOS", kInt, Kind::kSos, kNoIis),
    column("IISSOSForce", kInt, option_of<Kind::kSos, Option::kIisForce>, Kind::kSos)
        .set(-1, 1, rules::kOption<Kind::kSos, Option::kIisForce>),

    // Quadratic constraints
    column("QCSense", kChar, quad_senses, Kind::kQuadRow).set("<>=", rules::kQuadSense),
    column("QCRHS", kDouble, quad_right_sides, Kind::kQuadRow).set(-kInfinity, kInfinity, rules::kQuadRightSide),
    texts("QCName", Kind::kQuadRow, names<Kind::kQuadRow>).set_text(ZVN_MAX_NAMELEN, rules::kQuadRowName),
    absent("IISQConstr", kInt, Kind::kQuadRow, kNoIis),
    column("IISQConstrForce", kInt, option_of<Kind::kQuadRow, Option::kIisForce>, Kind::kQuadRow)
        .set(-1, 1, rules::kOption<Kind::kQuadRow, Option::kIisForce>),
    column("QCPi", kDouble, quad_duals, Kind::kQuadRow),
    column("QCSlack", kDouble, quad_slacks, Kind::kQuadRow),
    texts("QCTag", Kind::kQuadRow, tags<Kind::kQuadRow>).set_text(ZVN_MAX_TAGLEN, rules::kQuadRowTag),

    // General constraints
    absent("GenConstrType", kInt, Kind::kGeneral, kNoObject),
    absent("GenConstrName", kString, Kind::kGeneral, kNoObject, true),
    absent("IISGenConstr", kInt, Kind::kGeneral, kNoObject),
    absent("IISGenConstrForce", kInt, Kind::kGeneral, kNoObject, true),
    absent("FuncPieceError", kDouble, Kind::kGeneral, kNoObject, true),
    absent("FuncPieceLength", kDouble, Kind::kGeneral, kNoObject, true),
    absent("FuncPieceRatio", kDouble, Kind::kGeneral, kNoObject, true),
    absent("FuncPieces", kInt, Kind::kGeneral, kNoObject, true),

    // Solution quality
    model_dbl("MaxVio", max_violation),
    model_dbl("BoundVio", worst<bound_violation, false>),
    model_dbl("BoundSVio", worst<bound_violation, true>),
    model_int("BoundVioIndex", where<bound_violation, false>),
    model_int("BoundSVioIndex", where<bound_violation, true>),
    model_dbl("BoundVioSum", sum<bound_violation, false>),
    model_dbl("BoundSVioSum", sum<bound_violation, true>),
    model_dbl("ConstrVio", worst<constr_violation, false>),
    model_dbl("ConstrSVio", worst<constr_violation, true>),
    model_int("ConstrVioIndex", where<constr_violation, false>),
    model_int("ConstrSVioIndex", where<constr_violation, true>),
    model_dbl("ConstrVioSum", sum<constr_violation, false>),
    model_dbl("ConstrSVioSum", sum<constr_violation, true>),
    model_dbl("ConstrResidual", worst<constr_residual, false>),
    model_dbl("ConstrSResidual", worst<constr_residual, true>),
    model_int("ConstrResidualIndex", where<constr_residual, false>),
    model_int("ConstrSResidualIndex", where<constr_residual, true>),
    model_dbl("ConstrResidualSum", sum<constr_residual, false>),
    model_dbl("ConstrSResidualSum", sum<constr_residual, true>),
    model_dbl("DualVio", worst<dual_violation, false>),
    model_dbl("DualSVio", worst<dual_violation, true>),
    model_int("DualVioIndex", where<dual_violation, false>),
    model_int("DualSVioIndex", where<dual_violation, true>),
    model_dbl("DualVioSum", sum<dual_violation, false>),
    model_dbl("DualSVioSum", sum<dual_violation, true>),
    model_dbl("DualResidual", worst<dual_residual, false>),
    model_dbl("DualSResidual", worst<dual_residual, true>),
    model_int("DualResidualIndex", where<dual_residual, false>),
    model_int("DualSResidualIndex", where<dual_residual, true>),
    model_dbl("DualResidualSum", sum<dual_residual, false>),
    model_dbl("DualSResidualSum", sum<dual_residual, true>),
    model_dbl("ComplVio", worst<complementarity_violation, false>),
    model_int("ComplVioIndex", where<complementarity_violation, false>),
    model_dbl("ComplVioSum", sum<complementarity_violation, false>),
    model_dbl("IntVio", worst<integrality_violation, false>),
    model_int("IntVioIndex", where<integrality_violation, false>),
    model_dbl("IntVioSum", sum<integrality_violation, false>),

    // Several objectives
    AttrSpec{"ObjN", kDouble, Kind::kColumn, false, nullptr, nullptr, nullptr, objective_n}.set(
        -kLargestFinite, kLargestFinite, rules::kObjectiveCost),
    model_dbl("ObjNCon", objective_n_constant).set(-kLargestFinite, kLargestFinite, rules::kObjectiveConstant),
    model_int("ObjNPriority", objective_n_priority).set(-kMaxInt, kMaxInt, rules::kPriority),
    model_dbl("ObjNWeight", objective_n_weight).set(-kLargestFinite, kLargestFinite, rules::kWeight),
    model_dbl("ObjNRelTol", objective_n_rel_tol).set(0, kInfinity, rules::kRelTol),
    model_dbl("ObjNAbsTol", objective_n_abs_tol).set(0, kInfinity, rules::kAbsTol),
    model_dbl("ObjNVal", objective_n_value),
    model_str("ObjNName", objective_n_name).set_text(ZVN_MAX_NAMELEN, rules::kObjectiveName),
    model_int("NumObj", num_objectives).set(0, kMaxObjectives, rules::kNumObjectives),

    // Several scenarios
    absent("ScenNLB", kDouble, Kind::kColumn, kNoScenarios, true),
    absent("ScenNUB", kDouble, Kind::kColumn, kNoScenarios, true),
    absent("ScenNObj", kDouble, Kind::kColumn, kNoScenarios, true),
    absent("ScenNRHS", kDouble, Kind::kRow, kNoScenarios, true),
    absent("ScenNName", kString, Kind::kModel, kNoScenarios, true),
    absent("ScenNX", kDouble, Kind::kColumn, kNoScenarios),
    absent("ScenNObjBound", kDouble, Kind::kModel, kNoScenarios),
    absent("ScenNObjVal", kDouble, Kind::kModel, kNoScenarios),
    model_int("NumScenarios", none),

    // Batches
    absent("BatchErrorCode", kInt, Kind::kModel, kNoBatch),
    absent("BatchErrorMessage", kString, Kind::kModel, kNoBatch),
    absent("BatchID", kString, Kind::kModel, kNoBatch),
    absent("BatchStatus", kInt, Kind::kModel, kNoBatch),
};

constexpr bool in_listed_order() {
    if (std::size(kAttrs) != kCount) return false;
    for (std::size_t i = 0; i < kCount; ++i)
        if (std::string_view(kAttrs[i].name) != kNames[i]) return false;
    return true;
}
static_assert(in_listed_order(), "the table must follow names.inc");

}  // namespace

int num_attrs() { return static_cast<int>(kCount); }

const char* attr_name(int i) { return kNames[i]; }

int find_attr(const char* name) {
    const std::uintptr_t offset = reinterpret_cast<std::uintptr_t>(name) - reinterpret_cast<std::uintptr_t>(kNamePool);
    if (offset < sizeof kNamePool && kAtOffset[offset] >= 0) return kAtOffset[offset];
    return kIndex.find(name);
}

const AttrSpec& attr_spec(int attr) { return kAttrs[attr]; }

}  // namespace zelvan
