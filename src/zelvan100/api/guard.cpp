#include "api/guard.h"

#include <deque>
#include <mutex>

namespace zelvan {

namespace {

// Cells of one kind of handle. A retired cell reads as closed until kDelay others have been retired after it.
template <class Ticket>
class Tickets {
public:
    Ticket* take() {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (retired_.size() > kDelay) {
            Ticket* ticket = retired_.front();
            retired_.pop_front();
            return ticket;
        }
        return &cells_.emplace_back();
    }
    void retire(Ticket* ticket) {
        const std::lock_guard<std::mutex> lock(mutex_);
        retired_.push_back(ticket);
    }

private:
    static constexpr std::size_t kDelay = 1 << 16;
    std::mutex mutex_;
    std::deque<Ticket> cells_;
    std::deque<Ticket*> retired_;
};

// Never destroyed: handles may be tested while the process ends.
Tickets<ZVNenv>& env_tickets() {
    static auto* tickets = new Tickets<ZVNenv>;
    return *tickets;
}
Tickets<ZVNmodel>& model_tickets() {
    static auto* tickets = new Tickets<ZVNmodel>;
    return *tickets;
}

template <class Ticket>
int refuse_ticket(const Ticket* handle, TicketKind kind, const char* what) {
    const char* why = !handle                ? " handle is NULL"
                      : handle->kind != kind ? " handle is that of an object of another kind"
                                             : " handle is that of a freed object";
    handle_error() = std::string("The ") + what + why;
    return ZVN_ERROR_NULL_ARGUMENT;
}

}  // namespace

ZVNenv* new_env_ticket(Env* env) {
    ZVNenv* ticket = env_tickets().take();
    ticket->object = env;
    return ticket;
}

void retire(ZVNenv* ticket) {
    ticket->object = nullptr;
    env_tickets().retire(ticket);
}

ZVNmodel* new_model_ticket(Model* model) {
    ZVNmodel* ticket = model_tickets().take();
    ticket->object = model;
    ticket->env.object = &model->env;
    ticket->env.owner = false;
    return ticket;
}

void retire(ZVNmodel* ticket) {
    ticket->object = nullptr;
    ticket->env.object = nullptr;
    model_tickets().retire(ticket);
}

std::string& handle_error() {
    thread_local std::string text;
    return text;
}

namespace {

// What the latest failed call on this thread left, and the number of its environment.
struct Failure {
    std::uint64_t env = 0;
    std::string text;
};
thread_local Failure failure;

}  // namespace

int fail(Env& env, int code, const std::string& text) noexcept {
    try {
        failure = {env.number.value, text};
        const std::lock_guard lock(env.mutex);
        env.error = text;
    } catch (const std::exception&) {
        failure.env = 0;  // no memory for the text: the code must do
    }
    return code;
}

const char* error_text(const Env& env) {
    if (failure.env == env.number.value) return failure.text.c_str();
    thread_local std::string copy;
    const std::lock_guard lock(env.mutex);
    copy = env.error;
    return copy.c_str();
}

int refuse(const ZVNenv* handle) { return refuse_ticket(handle, TicketKind::kEnv, "environment"); }

int refuse(const ZVNmodel* handle) { return refuse_ticket(handle, TicketKind::kModel, "model"); }

}  // namespace zelvan
