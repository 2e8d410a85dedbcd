#include "core/env.h"

#include <atomic>
#include <cerrno>
#include <cstring>

#include "core/error.h"

namespace zelvan {

OwnNumber::OwnNumber() {
    static std::atomic<std::uint64_t> latest{0};
    value = ++latest;
}

LogFile::LogFile(const std::string& path) : file_(std::fopen(path.c_str(), "ab")) {
    if (!file_) throw Error(ZVN_ERROR_FILE_WRITE, "Unable to open log file '" + path + "': " + std::strerror(errno));
}

LogFile::~LogFile() { std::fclose(file_); }

// Flushed at once: the log is read while a solve runs, and must be whole when the process is killed.
void LogFile::write(std::string_view text) {
    std::lock_guard lock(mutex_);
    std::fwrite(text.data(), 1, text.size(), file_);
    std::fflush(file_);
}

namespace {

std::shared_ptr<LogFile> open_log(const std::string& path) {
    return path.empty() ? nullptr : std::make_shared<LogFile>(path);
}

}  // namespace

void Env::log(std::string_view text) const {
    std::shared_ptr<LogFile> file;
    bool shown;
    {
        const std::lock_guard lock(mutex);
        if (!params.get_int(Param::OutputFlag)) return;
        file = log_file;
        shown = params.get_int(Param::LogToConsole);
    }
    if (file) file->write(text);
    if (!shown) return;
    if (callback) {
        callback(std::string(text).c_str(), callback_data);
    } else {
        std::fwrite(text.data(), 1, text.size(), stdout);
        std::fflush(stdout);
    }
}

bool Env::is_silent() const {
    const std::lock_guard lock(mutex);
    return !params.get_int(Param::OutputFlag);
}

ParamValues Env::settings() const {
    const std::lock_guard lock(mutex);
    return params;
}

void Env::set_int(int param, int value) {
    const std::lock_guard lock(mutex);
    params.set_int(param, value);
}

void Env::set_dbl(int param, double value) {
    const std::lock_guard lock(mutex);
    params.set_dbl(param, value);
}

void Env::set_str(int param, std::string value) {
    const bool opens = param == static_cast<int>(Param::LogFile) && started;
    std::shared_ptr<LogFile> file = opens ? open_log(value) : nullptr;
    const std::lock_guard lock(mutex);
    params.set_str(param, std::move(value));
    if (opens) log_file.swap(file);
}

void Env::set_params(const ParamValues& values) {
    const std::string& path = values.get_str(Param::LogFile);
    const bool opens = started && path != params.get_str(Param::LogFile);
    std::shared_ptr<LogFile> file = opens ? open_log(path) : nullptr;
    const std::lock_guard lock(mutex);
    params = values;
    if (opens) log_file.swap(file);
}

void Env::start() {
    if (started) return;
    log_file = open_log(params.get_str(Param::LogFile));
    started = true;
}

}  // namespace zelvan
