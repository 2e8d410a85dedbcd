#include <algorithm>
#include <cstring>

#include "api/guard.h"
#include "io/prm.h"

using namespace zelvan;

namespace {

int known_param(const char* name) {
    require(name, "name");
    const int i = find_param(name);
    if (i < 0) throw Error(ZVN_ERROR_UNKNOWN_PARAMETER, std::string("Unknown parameter '") + name + "'");
    return i;
}

int param_of_type(const char* name, int type) {
    const int i = known_param(name);
    check_param_type(i, type);
    return i;
}

// At most size bytes, the terminating NUL included; a longer text is cut.
void copy_text(const std::string& text, char* buffer, int size) {
    const int length = std::min(static_cast<int>(text.size()), size - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
}

}  // namespace

int ZVNgetnumparams(ZVNenv* env) { return env_of(env) ? num_params() : 0; }

int ZVNgetparamname(ZVNenv* env, int i, char** name) {
    return with_env(env, [&](Env&) {
        require(name, "name");
        if (i < 0 || i >= num_params())
            throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE, "Parameter index " + std::to_string(i) + " is out of range [0, " +
                                                          std::to_string(num_params() - 1) + "]");
        *name = const_cast<char*>(param_spec(i).name);
    });
}

int ZVNgetparamtype(ZVNenv* env, const char* name) {
    int type = -1;
    with_env(env, [&](Env&) { type = param_spec(known_param(name)).type; });
    return type;
}

int ZVNgetparamflags(ZVNenv* env, const char* name, unsigned int* flags) {
    return with_env(env, [&](Env&) {
        require(flags, "flags");
        *flags = param_spec(known_param(name)).flags;
    });
}

int ZVNgetparamhelp(ZVNenv* env, const char* name, const char** purpose, const char** effect) {
    return with_env(env, [&](Env&) {
        const ParamSpec& spec = param_spec(known_param(name));
        if (purpose) *purpose = spec.purpose;
        if (effect) *effect = spec.effect;
    });
}

int ZVNgetintparaminfo(ZVNenv* env, const char* name, int* value, int* minimum, int* maximum, int* deflt) {
    return with_env(env, [&](Env& e) {
        const int i = param_of_type(name, 1);
        const ParamSpec& spec = param_spec(i);
        if (value) *value = e.params.get_int(static_cast<Param>(i));
        if (minimum) *minimum = static_cast<int>(spec.minimum);
        if (maximum) *maximum = static_cast<int>(spec.maximum);
        if (deflt) *deflt = static_cast<int>(spec.deflt);
    });
}

int ZVNgetdblparaminfo(ZVNenv* env, const char* name, double* value, double* minimum, double* maximum, double* deflt) {
    return with_env(env, [&](Env& e) {
        const int i = param_of_type(name, 2);
        const ParamSpec& spec = param_spec(i);
        if (value) *value = e.params.get_dbl(static_cast<Param>(i));
        if (minimum) *minimum = spec.minimum;
        if (maximum) *maximum = spec.maximum;
        if (deflt) *deflt = spec.deflt;
    });
}

int ZVNgetstrparaminfo(ZVNenv* env, const char* name, char* value, char* deflt) {
    return with_env(env, [&](Env& e) {
        const int i = param_of_type(name, 3);
        if (value) copy_text(e.params.get_str(static_cast<Param>(i)), value, ZVN_MAX_STRLEN);
        if (deflt) copy_text(param_spec(i).deflt_text, deflt, ZVN_MAX_STRLEN);
    });
}

int ZVNgetlongstrparam(ZVNenv* env, const char* name, char* value, int size, int* length) {
    return with_env(env, [&](Env& e) {
        const std::string& text = e.params.get_str(static_cast<Param>(param_of_type(name, 3)));
        if (value && size > 0) copy_text(text, value, size);
        if (length) *length = static_cast<int>(text.size());
    });
}

int ZVNsetintparam(ZVNenv* env, const char* name, int value) {
    return with_env(env, [&](Env& e) { e.set_int(known_param(name), value); });
}

int ZVNsetdblparam(ZVNenv* env, const char* name, double value) {
    return with_env(env, [&](Env& e) { e.set_dbl(known_param(name), value); });
}

int ZVNsetstrparam(ZVNenv* env, const char* name, const char* value) {
    return with_env(env, [&](Env& e) {
        require(value, "value");
        e.set_str(known_param(name), value);
    });
}

int ZVNfixtuneparam(ZVNenv* env, const char* name) {
    return with_env(env, [&](Env&) { known_param(name); });
}

int ZVNresetparams(ZVNenv* env) {
    return with_env(env, [](Env& e) { e.reset_params(); });
}

int ZVNreadparams(ZVNenv* env, const char* filename) {
    return with_env(env, [&](Env& e) {
        require(filename, "filename");
        read_params(e, filename);
    });
}

int ZVNwriteparams(ZVNenv* env, const char* filename) {
    return with_env(env, [&](Env& e) {
        require(filename, "filename");
        write_params(e, filename);
    });
}
