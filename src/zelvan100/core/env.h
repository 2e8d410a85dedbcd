#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "param/param.h"
#include "zelvan100.h"

namespace zelvan {

// An open log file, shared by an environment and the models made on it.
class LogFile {
public:
    // Throws Error when the file can't be opened for appending.
    explicit LogFile(const std::string& path);
    ~LogFile();
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;
    void write(std::string_view text);

private:
    std::FILE* file_;
    std::mutex mutex_;
};

// A mutex whose owner may be copied: the copy gets one of its own.
struct OwnMutex : std::mutex {
    OwnMutex() = default;
    OwnMutex(const OwnMutex&) {}
};

// A number that no other object has or had, copies included.
struct OwnNumber {
    OwnNumber();
    OwnNumber(const OwnNumber&) : OwnNumber() {}
    std::uint64_t value;
};

// Parameters, log and error text of one environment; each model has one of its own, copied from the
// environment that it was made on.
struct Env {
    ParamValues params;
    bool started = false;
    std::string error;  // of the latest failed call on any thread; see fail() in api/guard.h
    OwnNumber number;
    ZVNlogcallback callback = nullptr;
    void* callback_data = nullptr;
    std::shared_ptr<LogFile> log_file;
    mutable OwnMutex
        mutex;  // held to change params, log_file and error, and to read them while a solve may run elsewhere

    // Writes text to the log: callback or standard output (OutputFlag, LogToConsole), and LogFile.
    // May be called on any thread.
    void log(std::string_view text) const;
    bool is_silent() const;
    // A copy of the parameters that later changes from other threads leave alone.
    ParamValues settings() const;
    // The three setters behind ZVNset...param; they take care of LogFile and of fixed limits.
    void set_int(int param, int value);
    void set_dbl(int param, double value);
    void set_str(int param, std::string value);
    // All values at once, or none when the log file can't be opened.
    void set_params(const ParamValues& values);
    void reset_params() { set_params(ParamValues()); }
    void start();
};

}  // namespace zelvan
