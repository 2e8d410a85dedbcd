#pragma once
// Numbers as text, independent of the locale.

#include <string>
#include <string_view>

namespace zelvan {

// The whole text as a number; false when it isn't one, or is "nan". Spellings of infinity and numbers
// too large for a double give +-kInfinity. An exponent may be marked by 'd', as Fortran programs do.
bool parse_number(std::string_view text, double& value);
// Length of the number that `text` starts with, 0 when there is none. No sign, no spelled infinity.
std::size_t scan_number(std::string_view text, double& value);
// Shortest digits that read back to the same double.
void append_number(std::string& out, double value);

}  // namespace zelvan
