// Class ZVN: all constants.

#include "statusconst.h"

namespace zelvanpy {

namespace {

constexpr IntConstant kErrors[] = {
    {"OUT_OF_MEMORY", ZVN_ERROR_OUT_OF_MEMORY, "the memory doesn't suffice"},
    {"NULL_ARGUMENT", ZVN_ERROR_NULL_ARGUMENT, "an object is closed or missing"},
    {"INVALID_ARGUMENT", ZVN_ERROR_INVALID_ARGUMENT, "an argument has no meaning here"},
    {"UNKNOWN_ATTRIBUTE", ZVN_ERROR_UNKNOWN_ATTRIBUTE, "there is no attribute of that name"},
    {"DATA_NOT_AVAILABLE", ZVN_ERROR_DATA_NOT_AVAILABLE, "the value can't be read now"},
    {"INDEX_OUT_OF_RANGE", ZVN_ERROR_INDEX_OUT_OF_RANGE, "there is no object of that index"},
    {"UNKNOWN_PARAMETER", ZVN_ERROR_UNKNOWN_PARAMETER, "there is no parameter of that name"},
    {"VALUE_OUT_OF_RANGE", ZVN_ERROR_VALUE_OUT_OF_RANGE, "a value lies outside its bounds"},
    {"CALLBACK", ZVN_ERROR_CALLBACK, "a callback failed or was used wrongly"},
    {"FILE_READ", ZVN_ERROR_FILE_READ, "a file can't be read or holds a fault"},
    {"FILE_WRITE", ZVN_ERROR_FILE_WRITE, "a file can't be written"},
    {"NUMERIC", ZVN_ERROR_NUMERIC, "numerical difficulties"},
    {"IIS_NOT_INFEASIBLE", ZVN_ERROR_IIS_NOT_INFEASIBLE, "a feasible model has no inconsistent subsystem"},
    {"NOT_FOR_MIP", ZVN_ERROR_NOT_FOR_MIP, "not defined for mixed-integer models"},
    {"OPTIMIZATION_IN_PROGRESS", ZVN_ERROR_OPTIMIZATION_IN_PROGRESS, "not possible while the model is solved"},
    {"DUPLICATES", ZVN_ERROR_DUPLICATES, "an index appears twice"},
    {"NODEFILE", ZVN_ERROR_NODEFILE, "a node file can't be read or written"},
    {"Q_NOT_PSD", ZVN_ERROR_Q_NOT_PSD, "a quadratic form isn't positive semidefinite"},
    {"QCP_EQUALITY_CONSTRAINT", ZVN_ERROR_QCP_EQUALITY_CONSTRAINT, "a quadratic constraint is an equation"},
    {"NETWORK", ZVN_ERROR_NETWORK, "a remote service can't be reached"},
    {"JOB_REJECTED", ZVN_ERROR_JOB_REJECTED, "a remote service refused the job"},
    {"NOT_SUPPORTED", ZVN_ERROR_NOT_SUPPORTED, "the library doesn't do this"},
    {"EXCEED_2B_NONZEROS", ZVN_ERROR_EXCEED_2B_NONZEROS, "more entries than a 32-bit index holds"},
    {"INVALID_PIECEWISE_OBJ", ZVN_ERROR_INVALID_PIECEWISE_OBJ, "the points of an objective term are out of order"},
    {"UPDATEMODE_CHANGE", ZVN_ERROR_UPDATEMODE_CHANGE, "UpdateMode can't be changed now"},
    {"CLOUD", ZVN_ERROR_CLOUD, "a cloud service failed"},
    {"MODEL_MODIFICATION", ZVN_ERROR_MODEL_MODIFICATION, "the model can't be changed in a callback"},
    {"CSWORKER", ZVN_ERROR_CSWORKER, "a worker of a remote service failed"},
    {"TUNE_MODEL_TYPES", ZVN_ERROR_TUNE_MODEL_TYPES, "models of different kinds can't be tuned together"},
    {"NOT_IN_MODEL", ZVN_ERROR_NOT_IN_MODEL, "an object belongs to another model or was removed"},
    {"FAILED_TO_CREATE_MODEL", ZVN_ERROR_FAILED_TO_CREATE_MODEL, "a model couldn't be created"},
    {"INTERNAL", ZVN_ERROR_INTERNAL, "a fault of the library"},
};

constexpr IntConstant kIntegers[] = {
    {"ERROR_SECURITY", ZVN_ERROR_SECURITY},
    {"BATCH_CREATED", 1},
    {"BATCH_SUBMITTED", 2},
    {"BATCH_ABORTED", 3},
    {"BATCH_FAILED", 4},
    {"BATCH_COMPLETED", 5},
    {"VERSION_MAJOR", ZVN_VERSION_MAJOR},
    {"VERSION_MINOR", ZVN_VERSION_MINOR},
    {"VERSION_TECHNICAL", ZVN_VERSION_TECHNICAL},
    {"BASIC", ZVN_BASIC},
    {"NONBASIC_LOWER", ZVN_NONBASIC_LOWER},
    {"NONBASIC_UPPER", ZVN_NONBASIC_UPPER},
    {"SUPERBASIC", ZVN_SUPERBASIC},
    {"MINIMIZE", ZVN_MINIMIZE},
    {"MAXIMIZE", ZVN_MAXIMIZE},
    {"SOS_TYPE1", 1},
    {"SOS_TYPE2", 2},
    {"GENCONSTR_MAX", 0},
    {"GENCONSTR_MIN", 1},
    {"GENCONSTR_ABS", 2},
    {"GENCONSTR_AND", 3},
    {"GENCONSTR_OR", 4},
    {"GENCONSTR_NORM", 5},
    {"GENCONSTR_INDICATOR", 6},
    {"GENCONSTR_PWL", 7},
    {"GENCONSTR_POLY", 8},
    {"GENCONSTR_EXP", 9},
    {"GENCONSTR_EXPA", 10},
    {"GENCONSTR_LOG", 11},
    {"GENCONSTR_LOGA", 12},
    {"GENCONSTR_POW", 13},
    {"GENCONSTR_SIN", 14},
    {"GENCONSTR_COS", 15},
    {"GENCONSTR_TAN", 16},
    {"GENCONSTR_LOGISTIC", 17},
    {"MAXINT", ZVN_MAXINT},
    {"MAX_NAMELEN", ZVN_MAX_NAMELEN},
    {"MAX_STRLEN", ZVN_MAX_STRLEN},
    {"MAX_TAGLEN", ZVN_MAX_TAGLEN},
    {"MAX_CONCURRENT", 64},
    {"DEFAULT_CS_PORT", 61000},
    {"CUTS_AUTO", -1},
    {"CUTS_OFF", 0},
    {"CUTS_CONSERVATIVE", 1},
    {"CUTS_AGGRESSIVE", 2},
    {"CUTS_VERYAGGRESSIVE", 3},
    {"METHOD_NONE", -1},
    {"METHOD_AUTO", -1},
    {"METHOD_PRIMAL", 0},
    {"METHOD_DUAL", 1},
    {"METHOD_BARRIER", 2},
    {"METHOD_CONCURRENT", 3},
    {"METHOD_DETERMINISTIC_CONCURRENT", 4},
    {"METHOD_DETERMINISTIC_CONCURRENT_SIMPLEX", 5},
    {"FEASRELAX_LINEAR", 0},
    {"FEASRELAX_QUADRATIC", 1},
    {"FEASRELAX_CARDINALITY", 2},
    {"PHASE_MIP_NOREL", 0},
    {"PHASE_MIP_SEARCH", 1},
    {"PHASE_MIP_IMPROVE", 2},
};

struct CharConstant {
    const char* name;
    char value;
};
constexpr CharConstant kCharacters[] = {
    {"LESS_EQUAL", ZVN_LESS_EQUAL}, {"GREATER_EQUAL", ZVN_GREATER_EQUAL},
    {"EQUAL", ZVN_EQUAL},           {"CONTINUOUS", ZVN_CONTINUOUS},
    {"BINARY", ZVN_BINARY},         {"INTEGER", ZVN_INTEGER},
    {"SEMICONT", ZVN_SEMICONT},     {"SEMIINT", ZVN_SEMIINT},
};

constexpr char kDoc[] =
    "All constants of the package.\n\n"
    "    ZVN.Attr       names of the attributes of models, variables and constraints\n"
    "    ZVN.Param      names of the parameters\n"
    "    ZVN.Status     values of the attribute Status, which stand in ZVN as well (ZVN.OPTIMAL)\n"
    "    ZVN.Error      codes in ZelvanError.errno, which stand in ZVN as ZVN.ERROR_...\n"
    "    ZVN.Callback   codes of callbacks\n\n"
    "Senses: LESS_EQUAL, GREATER_EQUAL, EQUAL, MINIMIZE, MAXIMIZE.\n"
    "Variable types: CONTINUOUS, BINARY, INTEGER, SEMICONT, SEMIINT.\n"
    "Basis statuses: BASIC, NONBASIC_LOWER, NONBASIC_UPPER, SUPERBASIC.\n"
    "Kinds of constraints: SOS_TYPE1, SOS_TYPE2, GENCONSTR_...\n"
    "Limits: INFINITY (1e100, as a bound: none), UNDEFINED (1e101, a value that isn't set), MAXINT,\n"
    "MAX_NAMELEN, MAX_STRLEN, MAX_TAGLEN, MAX_CONCURRENT, DEFAULT_CS_PORT.\n"
    "Values of parameters and arguments: CUTS_..., METHOD_..., FEASRELAX_..., PHASE_MIP_..., BATCH_...\n"
    "Version of the library: VERSION_MAJOR, VERSION_MINOR, VERSION_TECHNICAL.\n\n"
    "help(ZVN.attr), help(ZVN.param), help(ZVN.status), help(ZVN.error) and help(ZVN.callback) tell more.";

constexpr char kErrorIntro[] =
    "Codes of the library's errors, found in ZelvanError.errno. They stand in ZVN with the prefix ERROR_.\n\n";

PyTypeObject* make_error_class(py::module_& module) {
    static std::string doc = kErrorIntro;
    append_meanings(doc, std::begin(kErrors), std::end(kErrors));
    PyTypeObject* type = make_const_class(module, "zelvanpy.ErrorConstClass", doc.c_str(), nullptr);
    add_constants(type, kErrors);
    return type;
}

// The object under its lower-case and its capitalised name.
void add_member(PyTypeObject* zvn, const char* lower, const char* capitalised, const py::object& object) {
    add_constant(zvn, lower, object);
    add_constant(zvn, capitalised, object);
}

py::object instance(PyTypeObject* type) {
    return steal(PyObject_CallObject(reinterpret_cast<PyObject*>(type), nullptr));
}

}  // namespace

void init_zvn(py::module_& module) {
    PyTypeObject* errors = make_error_class(module);
    PyTypeObject* zvn = make_const_class(module, "zelvanpy.ZVN", kDoc, nullptr);
    add_member(zvn, "attr", "Attr", instance(AttrConst_Type));
    add_member(zvn, "param", "Param", instance(ParamConst_Type));
    add_member(zvn, "callback", "Callback", borrow(reinterpret_cast<PyObject*>(CallbackClass_Type)));
    add_member(zvn, "error", "Error", instance(errors));
    add_member(zvn, "status", "Status", instance(StatusConst_Type));
    add_status_constants(zvn);
    add_constants(zvn, kErrors, "ERROR_");
    add_constants(zvn, kIntegers);
    for (const CharConstant& c : kCharacters)
        add_constant(zvn, c.name, steal(PyUnicode_FromStringAndSize(&c.value, 1)));
    add_constant(zvn, "INFINITY", steal(PyFloat_FromDouble(ZVN_INFINITY)));
    add_constant(zvn, "UNDEFINED", steal(PyFloat_FromDouble(ZVN_UNDEFINED)));
}

}  // namespace zelvanpy
