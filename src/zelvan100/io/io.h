#pragma once
// Model files. Readers throw Error(ZVN_ERROR_FILE_READ) with file, line and what was expected.

#include <functional>
#include <string>
#include <string_view>

#include "core/model_data.h"

namespace zelvan {

enum class FileFormat { kNone, kMps, kLp };

// By the ending of the name, a ".gz" behind it left out.
FileFormat model_format(std::string_view path);

using Warn = std::function<void(std::string_view line)>;

ModelData read_model(const std::string& path, const Warn& warn);
// An existing file stays as it was on failure. `warn` receives a line when names had to be replaced.
void write_model(const ModelData& data, const std::string& path, const Warn& warn);

// The whole file, uncompressed where it is gzip data (whatever its name says), without a byte order mark.
std::string read_file(const std::string& path);
// Writes to a temporary name in the same folder and renames it when complete; gzip for ".gz".
void write_file(const std::string& path, std::string_view text);

}  // namespace zelvan
