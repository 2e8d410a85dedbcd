// Class AttrConstClass: the names of the attributes.

#include "constclass.h"

namespace zelvanpy {

namespace {

constexpr const char* kRefusal = "Modifying Zelvan attribute constant not allowed";

constexpr const char* kNames[] = {
#define ZELVAN_ATTR(name) #name,
#include "../zelvan100/attr/names.inc"
#undef ZELVAN_ATTR
};

constexpr NameGroup kGroups[] = {
    {"NumConstrs", "Attributes of the model: sizes, kind, coefficient ranges, and the outcome of the latest solve."},
    {"LB", "Attributes of a variable: data, values in the solution, starts and hints, sensitivity."},
    {"Sense", "Attributes of a linear constraint."},
    {"IISSOS", "Attributes of an SOS constraint."},
    {"QCSense", "Attributes of a quadratic constraint."},
    {"GenConstrType", "Attributes of a general constraint."},
    {"MaxVio",
     "Quality of the solution (model): largest violation or residual, its index, and the sum; S marks the figures "
     "of the scaled model."},
    {"ObjN", "Several objectives; parameter ObjNumber selects the one that the attributes mean."},
    {"ScenNLB", "Several scenarios; parameter ScenarioNumber selects the one that the attributes mean."},
    {"BatchErrorCode", "Attributes of a batch."},
};

constexpr char kIntro[] =
    "Names of all attributes, each a string equal to its name.\n\n"
    "    model.getAttr(ZVN.Attr.ObjVal)      the same as model.ObjVal\n"
    "    x.setAttr(ZVN.Attr.UB, 5)           the same as x.UB = 5\n"
    "    model.getAttr(ZVN.Attr.X, list)     values for a list of variables\n\n"
    "Names are taken in any letter case. A value that can't be read now, such as a solution value before\n"
    "the solve, raises AttributeError. A value that was set shows after the next update.\n\n"
    "VarHintVal, VarHintPri, BranchPriority, Partition, PoolIgnore, PStart, DStart and Lazy are kept with the\n"
    "model but don't act on a solve yet.\n";

}  // namespace

void init_attrconst(py::module_& module) {
    static const std::string doc = list_by_group(kIntro, kNames, kGroups);
    AttrConst_Type =
        make_const_class(module, "zelvanpy.AttrConstClass", doc.c_str(), slot_function<refuse_assignment<kRefusal>>);
    add_names(AttrConst_Type, kNames);
}

}  // namespace zelvanpy
