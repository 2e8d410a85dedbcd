// `Model`: parameters. They live in the model's own environment.

#include "env.h"
#include "exception.h"
#include "model.h"
#include "param.h"
#include "pyargs.h"
#include "zelvan.h"

namespace zelvanpy {

namespace {

// The model's environment, held while names and values run code that may give the model another one.
class OwnEnv {
public:
    explicit OwnEnv(Model& model) : env_(borrow(model.env)) {
        if (!is_env(env_)) raise_zelvan(-1, "Invalid Environment");  // __init__ didn't come that far
    }
    operator Env&() const { return *reinterpret_cast<Env*>(env_.ptr()); }

private:
    const py::object env_;
};

void Model_setParam(Model& self, Args args) {
    static const Signature<2> kSignature{"setParam", 2, {Name("paramname"), Name("newval")}};
    const auto [name, value] = kSignature.parse(args);
    env_set_param(OwnEnv(self), name, value);
}

void Model_fixTuneParam(Model& self, Args args) {
    static const Signature<1> kSignature{"fixTuneParam", 1, {Name("paramname")}};
    const auto [name] = kSignature.parse(args);
    env_fix_tune_param(OwnEnv(self), name);
}

void Model_resetParams(Model& self) {
    env_reset_params(OwnEnv(self));
    const py::object main_env = default_env(false);
    if (is_interactive() && self.uenv == main_env.ptr())
        env_set_param(OwnEnv(self), to_str("LogFile"), to_str("zelvan.log"));
}

py::object Model_getParamInfo(Model& self, Args args) {
    static const Signature<1> kSignature{"getParamInfo", 1, {Name("paramname")}};
    const auto [name] = kSignature.parse(args);
    const OwnEnv env(self);
    const py::object names = param_list(env, name);
    const Py_ssize_t num = PyList_GET_SIZE(names.ptr());
    if (num == 1) return public_param_info(env, PyList_GET_ITEM(names.ptr(), 0));
    if (num > 1)
        call_own(self, "_splitlongmessage", steal(PyUnicode_FromFormat("Matching parameters:%S", names.ptr())));
    if (num > 0) return none();
    const py::object hint = param_hint(env, name);
    call_own(self, "message", no_matching_params(name));
    if (hint) call_own(self, "message", hint);
    return none();
}

}  // namespace

PyMethodDef model_param_methods[] = {
    {"setParam", method<Model_setParam>, kKeywords,
     "setParam($self, paramname, newval)\n--\n\n"
     "Set a parameter of the model. The name is taken in any letter case and may hold the wildcards * and ?; the\n"
     "parameter is set only where it resolves to exactly one, otherwise a line in the log tells what it matches.\n"
     "The word \"default\" restores the default.\n\n"
     "Raises ZelvanError for a value that is out of range, TypeError or OverflowError for one that is no number or\n"
     "too large."},
    {"fixTuneParam", method<Model_fixTuneParam>, kKeywords,
     "fixTuneParam($self, paramname)\n--\n\n"
     "Keep the current value of a parameter out of tuning. Names as for `setParam`."},
    {"resetParams", method<Model_resetParams>, METH_NOARGS,
     "resetParams($self, /)\n--\n\nGive all parameters of the model their default values."},
    {"getParamInfo", method<Model_getParamInfo>, kKeywords,
     "getParamInfo($self, paramname)\n--\n\n"
     "(name, type, value, minimum, maximum, default) of a parameter of the model; type is int, float or str.\n"
     "Where the name or pattern doesn't stand for exactly one parameter, a line in the log tells what it matches\n"
     "and the result is None."},
    {},
};

}  // namespace zelvanpy
