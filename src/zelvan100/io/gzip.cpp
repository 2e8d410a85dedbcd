#include "io/gzip.h"

#include <zlib.h>

#include <algorithm>
#include <limits>
#include <new>

#include "core/error.h"

namespace zelvan {

namespace {

constexpr int kGzipWindow = 15 + 16;  // largest window, gzip header and trailer
constexpr std::size_t kChunk = 1 << 18;

// Releases the stream's memory when an exception passes.
struct Stream : z_stream {
    int (*end)(z_stream*);
    explicit Stream(int (*end_function)(z_stream*)) : z_stream{}, end(end_function) {}
    ~Stream() { end(this); }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
};

// zlib counts in 32 bits, so input is handed over in pieces.
void feed(z_stream& stream, std::string_view& rest) {
    if (stream.avail_in > 0 || rest.empty()) return;
    const std::size_t n = std::min<std::size_t>(rest.size(), std::numeric_limits<uInt>::max());
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(rest.data()));
    stream.avail_in = static_cast<uInt>(n);
    rest.remove_prefix(n);
}

template <class Step>
int step_into(std::string& out, z_stream& stream, Step&& step) {
    const std::size_t before = out.size();
    out.resize(before + kChunk);
    stream.next_out = reinterpret_cast<Bytef*>(out.data() + before);
    stream.avail_out = kChunk;
    const int code = step();
    out.resize(out.size() - stream.avail_out);
    return code;
}

}  // namespace

bool is_gzip(std::string_view bytes) { return bytes.size() >= 2 && bytes[0] == '\x1f' && bytes[1] == '\x8b'; }

std::string gunzip(std::string_view bytes, const std::string& path) {
    Stream stream(inflateEnd);
    if (inflateInit2(&stream, kGzipWindow) != Z_OK) throw std::bad_alloc();
    std::string text;
    for (;;) {
        feed(stream, bytes);
        const int code = step_into(text, stream, [&] { return inflate(&stream, Z_NO_FLUSH); });
        if (code == Z_MEM_ERROR) throw std::bad_alloc();
        if (code == Z_STREAM_END) {
            // Several compressed parts may follow each other; anything else behind the end is padding.
            feed(stream, bytes);
            if (stream.avail_in < 2 || stream.next_in[0] != 0x1f || stream.next_in[1] != 0x8b) return text;
            inflateReset(&stream);
        } else if (code != Z_OK) {
            const bool cut = code == Z_BUF_ERROR;
            throw Error(ZVN_ERROR_FILE_READ,
                        "File '" + path + "': the compressed data " + (cut ? "ends too early" : "is damaged"));
        }
    }
}

std::string gzip(std::string_view text) {
    Stream stream(deflateEnd);
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzipWindow, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::bad_alloc();
    std::string out;
    for (int code = Z_OK; code != Z_STREAM_END;) {
        feed(stream, text);
        code = step_into(out, stream, [&] { return deflate(&stream, text.empty() ? Z_FINISH : Z_NO_FLUSH); });
        if (code != Z_OK && code != Z_STREAM_END && code != Z_BUF_ERROR)
            throw Error(ZVN_ERROR_FILE_WRITE, "The text could not be compressed");
    }
    return out;
}

}  // namespace zelvan
