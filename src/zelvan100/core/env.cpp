#include "core/env.h"

#include <cerrno>
#include <cstring>

#include "core/error.h"

namespace zelvan {

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
    if (!params.get_int(Param::OutputFlag)) return;
    if (log_file) log_file->write(text);
    if (!params.get_int(Param::LogToConsole)) return;
    if (callback) {
        callback(std::string(text).c_str(), callback_data);
    } else {
        std::fwrite(text.data(), 1, text.size(), stdout);
        std::fflush(stdout);
    }
}

void Env::set_int(int param, int value) { params.set_int(param, value); }

void Env::set_dbl(int param, double value) { params.set_dbl(param, value); }

void Env::set_str(int param, std::string value) {
    if (param == static_cast<int>(Param::LogFile) && started) log_file = open_log(value);
    params.set_str(param, std::move(value));
}

void Env::set_params(ParamValues values) {
    const std::string& path = values.get_str(Param::LogFile);
    if (started && path != params.get_str(Param::LogFile)) log_file = open_log(path);
    params = std::move(values);
}

void Env::start() {
    if (started) return;
    log_file = open_log(params.get_str(Param::LogFile));
    started = true;
}

}  // namespace zelvan
