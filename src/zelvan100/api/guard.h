#pragma once
// Handles, and the frame of every C function: check the handle, run, turn exceptions into codes.
//
// A handle is the address of a ticket, a small cell that outlives its object, so that a handle of a freed
// object, or one of another kind, is recognised instead of followed. Freed tickets are reused only after many
// others.

#include <cstdint>
#include <mutex>
#include <new>

#include "core/error.h"
#include "core/model.h"

namespace zelvan {
// The first word of each ticket.
enum class TicketKind : std::uint32_t { kEnv = 0x5a564e45, kModel = 0x5a564e4d };
}  // namespace zelvan

struct ZVNenv {
    zelvan::TicketKind kind = zelvan::TicketKind::kEnv;
    bool owner = true;  // false for the handle of a model's own environment
    zelvan::Env* object = nullptr;
};
struct ZVNmodel {
    zelvan::TicketKind kind = zelvan::TicketKind::kModel;
    zelvan::Model* object = nullptr;
    ZVNenv env;  // the handle that ZVNgetenv returns
};

namespace zelvan {

ZVNenv* new_env_ticket(Env* env);
void retire(ZVNenv* ticket);
ZVNmodel* new_model_ticket(Model* model);
void retire(ZVNmodel* ticket);

// Text of the latest refusal of an invalid handle on this thread.
std::string& handle_error();

inline Env* env_of(ZVNenv* handle) { return handle && handle->kind == TicketKind::kEnv ? handle->object : nullptr; }
inline Model* model_of(ZVNmodel* handle) {
    return handle && handle->kind == TicketKind::kModel ? handle->object : nullptr;
}
inline Env& env_with_error(Env& env) { return env; }
inline Env& env_with_error(Model& model) { return model.env; }
// Leaves the text of a failed call on the environment. A thread reads back what its own call left there, whatever
// other threads do meanwhile, and otherwise the latest text. Gives the code.
int fail(Env& env, int code, const std::string& text) noexcept;
const char* error_text(const Env& env);
// The code for a handle behind which there is no object of the kind; tells why.
int refuse(const ZVNenv* handle);
int refuse(const ZVNmodel* handle);

// Runs body(object); the code is 0 or that of the exception, whose text is left on the object.
template <class Object, class Body>
int run(Object& object, Body&& body) noexcept {
    try {
        body(object);
        return 0;
    } catch (const Error& e) {
        return fail(env_with_error(object), e.code(), e.text());
    } catch (const std::bad_alloc&) {
        return fail(env_with_error(object), ZVN_ERROR_OUT_OF_MEMORY, "Out of memory");
    } catch (const std::exception& e) {
        return fail(env_with_error(object), ZVN_ERROR_INTERNAL, std::string("Internal error: ") + e.what());
    }
}

template <class Body>
int with_env(ZVNenv* handle, Body&& body) noexcept {
    Env* env = env_of(handle);
    return env ? run(*env, body) : refuse(handle);
}

template <class Body>
int with_model(ZVNmodel* handle, Body&& body) noexcept {
    Model* model = model_of(handle);
    return model ? run(*model, body) : refuse(handle);
}

// For calls that show data or solution: those before or after a solve that another thread runs, not a mixture.
template <class Body>
int read_model(ZVNmodel* handle, Body&& body) noexcept {
    return with_model(handle, [&](Model& model) {
        const std::lock_guard lock(model.state_mutex);
        body(model);
    });
}

// For calls that change the model, which a running solve forbids.
template <class Body>
int change_model(ZVNmodel* handle, Body&& body) noexcept {
    return with_model(handle, [&](Model& model) {
        if (model.solving)
            throw Error(ZVN_ERROR_OPTIMIZATION_IN_PROGRESS, "The model can't be changed while it is being solved");
        body(model);
    });
}

// Throws when a pointer argument is NULL.
inline void require(const void* pointer, const char* argument) {
    if (!pointer) throw Error(ZVN_ERROR_NULL_ARGUMENT, std::string("Argument '") + argument + "' is NULL");
}

}  // namespace zelvan
