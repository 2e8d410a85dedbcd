// Class ParamConstClass: the names of the parameters.

#include "constclass.h"

namespace zelvanpy {

namespace {

constexpr const char* kRefusal = "Modifying Zelvan parameter constant not allowed";

constexpr const char* kNames[] = {
#define ZELVAN_PARAM(name) #name,
#include "../zelvan100/param/names.inc"
#undef ZELVAN_PARAM
};

constexpr NameGroup kGroups[] = {
    {"BarIterLimit", "Termination: limits and targets that end a solve."},
    {"BarConvTol", "Tolerances."},
    {"InfUnbdInfo", "Simplex."},
    {"BarCorrectors", "Barrier."},
    {"BranchDir", "Search of mixed-integer models."},
    {"TuneCriterion", "Tuning."},
    {"PoolSearchMode", "Several solutions."},
    {"BQPCuts", "Cuts of mixed-integer models."},
    {"WorkerPassword", "Distributed solving, cloud and compute server."},
    {"AggFill", "All others."},
};

constexpr char kIntro[] =
    "Names of all parameters, each a string equal to its name.\n\n"
    "    model.setParam(ZVN.Param.TimeLimit, 60)     the same as model.Params.TimeLimit = 60\n"
    "    zelvanpy.setParam(\"TimeLimit\", 60)          for the default environment\n"
    "    model.setParam(\"TimeLimit\", \"default\")      back to the default value\n"
    "    zelvanpy.paramHelp(\"TimeLimit\")             what the parameter does, its type and its bounds\n\n"
    "Names are taken in any letter case; the wildcards * and ? show which names match.\n";

}  // namespace

void init_paramconst(py::module_& module) {
    static const std::string doc = list_by_group(kIntro, kNames, kGroups);
    ParamConst_Type =
        make_const_class(module, "zelvanpy.ParamConstClass", doc.c_str(), slot_function<refuse_assignment<kRefusal>>);
    add_names(ParamConst_Type, kNames);
}

}  // namespace zelvanpy
