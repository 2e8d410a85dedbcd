// Class CallbackClass: the codes of callbacks.

#include "constclass.h"

namespace zelvanpy {

namespace {

struct CodeGroup {
    const char* text;
    const IntConstant* begin;
    const IntConstant* end;
};

constexpr IntConstant kWhere[] = {
    {"POLLING", 0, "regular call in which nothing can be queried"},
    {"PRESOLVE", 1, "presolve runs"},
    {"SIMPLEX", 2, "simplex runs"},
    {"MIP", 3, "the search of a mixed-integer model runs"},
    {"MIPSOL", 4, "a new solution was found"},
    {"MIPNODE", 5, "a node of the search tree is explored"},
    {"MESSAGE", 6, "a log line was written"},
    {"BARRIER", 7, "barrier runs"},
    {"MULTIOBJ", 8, "one of several objectives was solved"},
    {"IIS", 9, "an irreducible inconsistent subsystem is computed"},
};
constexpr IntConstant kPresolve[] = {
    {"PRE_COLDEL", 1000, "int, columns removed"},      {"PRE_ROWDEL", 1001, "int, rows removed"},
    {"PRE_SENCHG", 1002, "int, senses changed"},       {"PRE_BNDCHG", 1003, "int, bounds tightened"},
    {"PRE_COECHG", 1004, "int, coefficients changed"},
};
constexpr IntConstant kSimplex[] = {
    {"SPX_ITRCNT", 2000, "float, iterations"},
    {"SPX_OBJVAL", 2001, "float, objective value"},
    {"SPX_PRIMINF", 2002, "float, sum of primal infeasibilities"},
    {"SPX_DUALINF", 2003, "float, sum of dual infeasibilities"},
    {"SPX_ISPERT", 2004, "int, whether the model is perturbed"},
};
constexpr IntConstant kBarrier[] = {
    {"BARRIER_ITRCNT", 7001, "int, iterations"},
    {"BARRIER_PRIMOBJ", 7002, "float, primal objective value"},
    {"BARRIER_DUALOBJ", 7003, "float, dual objective value"},
    {"BARRIER_PRIMINF", 7004, "float, primal infeasibility"},
    {"BARRIER_DUALINF", 7005, "float, dual infeasibility"},
    {"BARRIER_COMPL", 7006, "float, violation of complementarity"},
};
constexpr IntConstant kMip[] = {
    {"MIP_OBJBST", 3000, "float, objective value of the incumbent"},
    {"MIP_OBJBND", 3001, "float, bound on the objective value"},
    {"MIP_NODCNT", 3002, "float, nodes explored"},
    {"MIP_SOLCNT", 3003, "int, solutions found"},
    {"MIP_CUTCNT", 3004, "int, cuts applied"},
    {"MIP_NODLFT", 3005, "float, nodes left"},
    {"MIP_ITRCNT", 3006, "float, simplex iterations"},
    {"MIP_OPENSCENARIOS", 3007, "int, scenarios not yet solved"},
    {"MIP_PHASE", 3008, "int, phase of the search, one of ZVN.PHASE_MIP_..."},
};
constexpr IntConstant kMipSol[] = {
    {"MIPSOL_SOL", 4001, "list of float, the new solution; read it with cbGetSolution"},
    {"MIPSOL_OBJ", 4002, "float, objective value of the new solution"},
    {"MIPSOL_OBJBST", 4003, "float, objective value of the incumbent"},
    {"MIPSOL_OBJBND", 4004, "float, bound on the objective value"},
    {"MIPSOL_NODCNT", 4005, "float, nodes explored"},
    {"MIPSOL_SOLCNT", 4006, "int, solutions found"},
    {"MIPSOL_OPENSCENARIOS", 4007, "int, scenarios not yet solved"},
    {"MIPSOL_PHASE", 4008, "int, phase of the search, one of ZVN.PHASE_MIP_..."},
};
constexpr IntConstant kMipNode[] = {
    {"MIPNODE_STATUS", 5001, "int, status of the node's relaxation, as the attribute Status"},
    {"MIPNODE_REL", 5002, "list of float, solution of the relaxation; read it with cbGetNodeRel"},
    {"MIPNODE_OBJBST", 5003, "float, objective value of the incumbent"},
    {"MIPNODE_OBJBND", 5004, "float, bound on the objective value"},
    {"MIPNODE_NODCNT", 5005, "float, nodes explored"},
    {"MIPNODE_SOLCNT", 5006, "int, solutions found"},
    {"MIPNODE_BRVAR", 5007, "int, index of the branching variable, -1 when it isn't known"},
    {"MIPNODE_OPENSCENARIOS", 5008, "int, scenarios not yet solved"},
    {"MIPNODE_PHASE", 5009, "int, phase of the search, one of ZVN.PHASE_MIP_..."},
};
constexpr IntConstant kAnyTime[] = {
    {"MSG_STRING", 6001, "str, the log line"},
    {"RUNTIME", 6002, "float, seconds since the start of the solve"},
    {"WORK", 6003, "float, work units since the start of the solve"},
};
constexpr IntConstant kMultiObj[] = {
    {"MULTIOBJ_OBJCNT", 8001, "int, objectives solved"},
    {"MULTIOBJ_SOLCNT", 8002, "int, solutions found"},
    {"MULTIOBJ_SOL", 8003, "list of float, the new solution; read it with cbGetSolution"},
};
constexpr IntConstant kIis[] = {
    {"IIS_CONSTRMIN", 9001, "int, least number of constraints in the subsystem"},
    {"IIS_CONSTRMAX", 9002, "int, largest number of constraints in the subsystem"},
    {"IIS_CONSTRGUESS", 9003, "int, estimated number of constraints in the subsystem"},
    {"IIS_BOUNDMIN", 9004, "int, least number of bounds in the subsystem"},
    {"IIS_BOUNDMAX", 9005, "int, largest number of bounds in the subsystem"},
    {"IIS_BOUNDGUESS", 9006, "int, estimated number of bounds in the subsystem"},
};

const CodeGroup kGroups[] = {
    {"Values of `where`:", std::begin(kWhere), std::end(kWhere)},
    {"Values of `what` in PRESOLVE:", std::begin(kPresolve), std::end(kPresolve)},
    {"Values of `what` in SIMPLEX:", std::begin(kSimplex), std::end(kSimplex)},
    {"Values of `what` in BARRIER:", std::begin(kBarrier), std::end(kBarrier)},
    {"Values of `what` in MIP:", std::begin(kMip), std::end(kMip)},
    {"Values of `what` in MIPSOL:", std::begin(kMipSol), std::end(kMipSol)},
    {"Values of `what` in MIPNODE:", std::begin(kMipNode), std::end(kMipNode)},
    {"Values of `what` in MESSAGE (MSG_STRING), and in all but POLLING:", std::begin(kAnyTime), std::end(kAnyTime)},
    {"Values of `what` in MULTIOBJ:", std::begin(kMultiObj), std::end(kMultiObj)},
    {"Values of `what` in IIS:", std::begin(kIis), std::end(kIis)},
};

constexpr char kIntro[] = "Codes of callbacks: where the solver stands when it calls, and what can be asked there.\n";

}  // namespace

void init_callbackconst(py::module_& module) {
    static std::string doc = kIntro;
    for (const CodeGroup& group : kGroups) {
        append_wrapped(doc += '\n', group.text, 0);
        append_meanings(doc, group.begin, group.end);
    }
    CallbackClass_Type = make_const_class(module, "zelvanpy.CallbackClass", doc.c_str(), nullptr);
    for (const CodeGroup& group : kGroups) add_constants(CallbackClass_Type, group.begin, group.end);
}

}  // namespace zelvanpy
