// Class StatusConstClass: the values of the attribute Status.

#include "statusconst.h"

namespace zelvanpy {

namespace {

constexpr const char* kRefusal = "Modifying Zelvan status constant not allowed";

constexpr IntConstant kStatuses[] = {
    {"LOADED", ZVN_LOADED, "the model was changed or never solved: there is no solution information"},
    {"OPTIMAL", ZVN_OPTIMAL, "solved to optimality within the tolerances"},
    {"INFEASIBLE", ZVN_INFEASIBLE, "no solution satisfies the constraints"},
    {"INF_OR_UNBD", ZVN_INF_OR_UNBD, "infeasible or unbounded; DualReductions=0 makes the solve tell which"},
    {"UNBOUNDED", ZVN_UNBOUNDED, "the objective improves without limit if a solution exists"},
    {"CUTOFF", ZVN_CUTOFF, "no solution is better than the parameter Cutoff"},
    {"ITERATION_LIMIT", ZVN_ITERATION_LIMIT, "stopped by IterationLimit or BarIterLimit"},
    {"NODE_LIMIT", ZVN_NODE_LIMIT, "stopped by NodeLimit"},
    {"TIME_LIMIT", ZVN_TIME_LIMIT, "stopped by TimeLimit"},
    {"SOLUTION_LIMIT", ZVN_SOLUTION_LIMIT, "stopped by SolutionLimit"},
    {"INTERRUPTED", ZVN_INTERRUPTED, "stopped by the user"},
    {"NUMERIC", ZVN_NUMERIC, "given up for numerical difficulties"},
    {"SUBOPTIMAL", ZVN_SUBOPTIMAL, "a solution was found, but optimality couldn't be proven"},
    {"INPROGRESS", ZVN_INPROGRESS, "the solve is running"},
    {"USER_OBJ_LIMIT", ZVN_USER_OBJ_LIMIT, "stopped by BestObjStop or BestBdStop"},
    {"WORK_LIMIT", ZVN_WORK_LIMIT, "stopped by WorkLimit"},
    {"MEM_LIMIT", ZVN_MEM_LIMIT, "stopped by SoftMemLimit"},
};

constexpr char kIntro[] =
    "Values of the attribute Status, which tells how the latest solve ended. They stand in ZVN as well.\n\n"
    "    if model.Status == ZVN.OPTIMAL:\n"
    "        print(model.ObjVal)\n\n";

}  // namespace

void add_status_constants(PyTypeObject* type) { add_constants(type, kStatuses); }

const char* status_name(int status) {
    for (const IntConstant& row : kStatuses)
        if (row.value == status) return row.name;
    return "";
}

void init_statusconst(py::module_& module) {
    static std::string doc = kIntro;
    append_meanings(doc, std::begin(kStatuses), std::end(kStatuses));
    StatusConst_Type =
        make_const_class(module, "zelvanpy.StatusConstClass", doc.c_str(), slot_function<refuse_assignment<kRefusal>>);
    add_status_constants(StatusConst_Type);
}

}  // namespace zelvanpy
