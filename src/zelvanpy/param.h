#pragma once
// Parameter services: the methods that they add to Env, and ParamClass, the object behind Model.Params.

#include "env.h"

namespace zelvanpy {

extern PyMethodDef env_param_methods[];

// Env._paramlist: names of the parameters that `name` resolves to, by wildcard and in any letter case.
py::object param_list(Env& env, py::handle name);
// Env._getParamInfo: (name, type, value, minimum, maximum, default, flags), None for an unknown name.
py::object param_info(Env& env, py::handle name);
// The leading six entries of that tuple; TypeError for an unknown name.
py::object public_param_info(Env& env, py::handle name);
void env_set_param(Env& env, py::handle name, py::handle value);
void env_fix_tune_param(Env& env, py::handle name);
void env_reset_params(Env& env);
void env_read_params(Env& env, py::handle filename);
void env_write_params(Env& env, py::handle filename);
// "Did you mean TimeLimit?" for a misspelt name; empty when no name is near.
py::object param_hint(Env& env, py::handle name);
// "No parameters matching '...' found"
py::object no_matching_params(py::handle name);
// "Parameter changes: Name=value, ..." or "No parameter changes".
py::object param_changes(Env& env);

// ParamClass(env)
py::object new_params(py::handle env);

}  // namespace zelvanpy
