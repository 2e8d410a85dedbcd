#pragma once

#include <string>
#include <string_view>

namespace zelvan {

bool is_gzip(std::string_view bytes);
// Throws Error(ZVN_ERROR_FILE_READ) naming `path` when the data is damaged or cut off.
std::string gunzip(std::string_view bytes, const std::string& path);
std::string gzip(std::string_view text);

}  // namespace zelvan
