// Environments: life, messages, log callbacks; version and platform.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

#include "api/guard.h"

namespace {

using namespace zelvan;

// Refusals that have no environment to leave their text on.
int refuse_creation(int code, const char* text) {
    handle_error() = text;
    return code;
}

const char* message_of(const Env* env) { return env ? error_text(*env) : handle_error().c_str(); }

bool names_container(const char* path) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        for (const char* mark : {"docker", "kubepods", "containerd", "lxc", "libpod"})
            if (line.find(mark) != std::string::npos) return true;
    return false;
}

}  // namespace

extern "C" {

int ZVNemptyenvadvinternal(ZVNenv** env, int apitype, int major, int minor, int technical, const char* server,
                           const char* router, const char* password, const char* group, int priority, int timeout,
                           void* callback) {
    (void)minor, (void)technical;  // compatible within one major version
    if (!env) return refuse_creation(ZVN_ERROR_NULL_ARGUMENT, "Argument 'env' is NULL");
    *env = nullptr;
    if (apitype != 0) return refuse_creation(ZVN_ERROR_INVALID_ARGUMENT, "Argument 'apitype' must be 0");
    if (major != ZVN_VERSION_MAJOR)
        return refuse_creation(ZVN_ERROR_INVALID_ARGUMENT,
                               "The caller was built for another major version of the library");
    if (server || router || password || group || priority || timeout || callback)
        return refuse_creation(ZVN_ERROR_NOT_SUPPORTED, "Remote services are not supported");
    try {
        auto created = std::make_unique<Env>();
        *env = new_env_ticket(created.get());
        created.release();
        return 0;
    } catch (const std::bad_alloc&) {
        return refuse_creation(ZVN_ERROR_OUT_OF_MEMORY, "Out of memory");
    }
}

int ZVNstartenv(ZVNenv* env) {
    return with_env(env, [](Env& e) { e.start(); });
}

const char* ZVNgeterrormsg(ZVNenv* env) { return message_of(env_of(env)); }

const char* ZVNgetmerrormsg(ZVNmodel* model) {
    Model* m = model_of(model);
    return message_of(m ? &m->env : nullptr);
}

void ZVNfreeenv(ZVNenv* env) {
    Env* object = env_of(env);
    if (!object || !env->owner) return;
    retire(env);
    delete object;
}

void ZVNmsg(ZVNenv* env, const char* message) {
    with_env(env, [&](Env& e) {
        require(message, "message");
        e.log(message);
    });
}

int ZVNsetlogcallbackfuncenv(ZVNenv* env, ZVNlogcallback callback, void* userdata) {
    return with_env(env, [&](Env& e) {
        e.callback = callback;
        e.callback_data = userdata;
    });
}

int ZVNsetlogcallbackfunc(ZVNmodel* model, ZVNlogcallback callback, void* userdata) {
    return with_model(model, [&](Model& m) {
        m.env.callback = callback;
        m.env.callback_data = userdata;
    });
}

int ZVNgetcommstats(ZVNenv* env, double* recvtime, double* recvbytes, double* recvmsgs, double* sendtime,
                    double* sendbytes, double* sendmsgs) {
    return with_env(env, [&](Env&) {
        for (double* figure : {recvtime, recvbytes, recvmsgs, sendtime, sendbytes, sendmsgs})
            if (figure) *figure = 0.0;
    });
}

void ZVNversion(int* major, int* minor, int* technical) {
    if (major) *major = ZVN_VERSION_MAJOR;
    if (minor) *minor = ZVN_VERSION_MINOR;
    if (technical) *technical = ZVN_VERSION_TECHNICAL;
}

const char* ZVNplatform(void) {
#if defined(__APPLE__) && defined(__aarch64__)
    return "macosarm64";
#elif defined(__APPLE__)
    return "macos64";
#elif defined(_WIN32)
    return "win64";
#elif defined(__aarch64__)
    return "armlinux64";
#else
    return "linux64";
#endif
}

int ZVNisContainer(void) {
    try {
        std::error_code ignored;
        return std::filesystem::exists("/.dockerenv", ignored) ||
               std::filesystem::exists("/run/.containerenv", ignored) || names_container("/proc/1/cgroup");
    } catch (const std::exception&) {
        return 0;
    }
}

void ZVNfree(void* text) { std::free(text); }

}  // extern "C"
