// Whole files in, whole files out.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <utility>

#include "core/error.h"
#include "io/endings.h"
#include "io/gzip.h"
#include "io/io.h"

namespace zelvan {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";  // of UTF-8

class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }
    bool is_open() const { return fd_ >= 0; }
    bool close() { return ::close(std::exchange(fd_, -1)) == 0; }

private:
    int fd_;
};

[[noreturn]] void fail(int code, const char* action, const std::string& path) {
    const std::string reason = std::strerror(errno);
    throw Error(code, std::string("Unable to ") + action + " file '" + path + "': " + reason);
}

void write_all(int fd, std::string_view bytes, const std::string& path) {
    while (!bytes.empty()) {
        const ssize_t n = ::write(fd, bytes.data(), bytes.size());
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) fail(ZVN_ERROR_FILE_WRITE, "write", path);
        bytes.remove_prefix(static_cast<std::size_t>(n));
    }
}

// A file of a new name in the folder of `target`, removed unless it took the target's place.
class TemporaryFile {
public:
    explicit TemporaryFile(std::string target) : target_(std::move(target)), file_(create()) {}
    ~TemporaryFile() {
        if (!placed_) ::unlink(path_.c_str());
    }
    int fd() const { return file_.get(); }
    void take_place() {
        if (!file_.close() || std::rename(path_.c_str(), target_.c_str()) != 0)
            fail(ZVN_ERROR_FILE_WRITE, "write", target_);
        placed_ = true;
    }

private:
    // open() applies the umask, which mkstemp() would not.
    int create() {
        static std::atomic<unsigned> counter{0};
        const std::string folder = target_.substr(0, target_.rfind('/') + 1);
        for (;;) {
            path_ = folder + ".writing-" + std::to_string(::getpid()) + "-" + std::to_string(counter++);
            const int fd = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (fd >= 0) return fd;
            if (errno != EEXIST) fail(ZVN_ERROR_FILE_WRITE, "write", target_);
        }
    }

    std::string target_, path_;
    bool placed_ = false;
    Descriptor file_;
};

// Where symbolic links lead, also when there is no file yet.
std::string behind_links(std::string path) {
    constexpr int kMostLinks = 40;
    struct stat status;
    for (int k = 0; ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode); ++k) {
        char target[PATH_MAX];
        const ssize_t length = ::readlink(path.c_str(), target, sizeof target);
        if (k == kMostLinks) errno = ELOOP;
        if (k == kMostLinks || length < 0) fail(ZVN_ERROR_FILE_WRITE, "write", path);
        const std::string folder = target[0] == '/' ? std::string() : path.substr(0, path.rfind('/') + 1);
        path = folder + std::string(target, static_cast<std::size_t>(length));
    }
    return path;
}

// Devices and pipes are written to directly: a renamed file would take their place.
void write_through(const std::string& path, std::string_view bytes) {
    Descriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (!file.is_open()) fail(ZVN_ERROR_FILE_WRITE, "write", path);
    write_all(file.get(), bytes, path);
    if (!file.close()) fail(ZVN_ERROR_FILE_WRITE, "write", path);
}

void replace_file(const std::string& path, const struct stat* existing, std::string_view bytes) {
    if (existing && ::access(path.c_str(), W_OK) != 0) fail(ZVN_ERROR_FILE_WRITE, "write", path);
    TemporaryFile file(behind_links(path));
    if (existing && ::fchmod(file.fd(), existing->st_mode & 07777) != 0) fail(ZVN_ERROR_FILE_WRITE, "write", path);
    write_all(file.fd(), bytes, path);
    file.take_place();
}

}  // namespace

std::string read_file(const std::string& path) {
    Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status;
    if (!file.is_open() || ::fstat(file.get(), &status) != 0) fail(ZVN_ERROR_FILE_READ, "open", path);
    std::string bytes;
    // One byte more than the file has, so that its end is seen without growing the buffer.
    std::size_t size = 0, room = S_ISREG(status.st_mode) ? static_cast<std::size_t>(status.st_size) + 1 : 1 << 16;
    for (;;) {
        bytes.resize(room);
        const ssize_t n = ::read(file.get(), bytes.data() + size, room - size);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) fail(ZVN_ERROR_FILE_READ, "read", path);
        if (n == 0) break;
        size += static_cast<std::size_t>(n);
        if (size == room) room *= 2;
    }
    bytes.resize(size);
    if (is_gzip(bytes)) bytes = gunzip(bytes, path);
    if (bytes.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0) bytes.erase(0, kByteOrderMark.size());
    return bytes;
}

void write_file(const std::string& path, std::string_view text) {
    const std::string packed = is_gz_name(path) ? gzip(text) : std::string();
    const std::string_view bytes = is_gz_name(path) ? std::string_view(packed) : text;
    struct stat status;
    const bool exists = ::stat(path.c_str(), &status) == 0;
    if (exists && S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        fail(ZVN_ERROR_FILE_WRITE, "write", path);
    }
    if (exists && !S_ISREG(status.st_mode)) return write_through(path, bytes);
    replace_file(path, exists ? &status : nullptr, bytes);
}

}  // namespace zelvan
