#include <string>

#include "io/endings.h"
#include "io/io.h"
#include "io/lp.h"
#include "io/mps.h"

namespace zelvan {

namespace {

struct Ending {
    std::string_view text;
    FileFormat format;
};
constexpr Ending kEndings[] = {{".mps", FileFormat::kMps}, {".lp", FileFormat::kLp}};

FileFormat known_format(const std::string& path, int code) {
    const FileFormat format = model_format(path);
    if (format == FileFormat::kNone)
        throw Error(code,
                    "File '" + path + "': no model format has this ending, expected .mps or .lp, perhaps with .gz");
    return format;
}

}  // namespace

FileFormat model_format(std::string_view path) {
    for (const Ending& ending : kEndings)
        if (has_ending(without_gz(path), ending.text)) return ending.format;
    return FileFormat::kNone;
}

ModelData read_model(const std::string& path, const Warn& warn) {
    const FileFormat format = known_format(path, ZVN_ERROR_FILE_READ);
    const Source source = Source::read(path);
    return format == FileFormat::kMps ? read_mps(source, warn) : read_lp(source, warn);
}

void write_model(const ModelData& data, const std::string& path, const Warn& warn) {
    const FileFormat format = known_format(path, ZVN_ERROR_FILE_WRITE);
    write_file(path, format == FileFormat::kMps ? write_mps(data, warn) : write_lp(data, warn));
}

}  // namespace zelvan
