#pragma once
// Parameter files (.prm): lines of name and value; '#' starts a comment. A value that holds blanks at its
// ends, '#', quotes or nothing stands in double quotes, with \" \\ \n as escapes.

#include <string>

#include "core/env.h"

namespace zelvan {

// Throws Error with file and line, and sets nothing then.
void read_params(Env& env, const std::string& path);
// The values that differ from their default. Opaque ones (passwords, keys) are left out, with a comment.
void write_params(const Env& env, const std::string& path);

}  // namespace zelvan
