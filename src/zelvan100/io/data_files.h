#pragma once

#include <string>
#include <string_view>

#include "core/model.h"

namespace zelvan {

// Files of data for a model (parameters, start, basis, ...) and models themselves, by the ending of the
// name. Endings that nothing stands for are ZVN_ERROR_NOT_SUPPORTED.
void read_data(Model& model, const std::string& path);
void write_any(Model& model, const std::string& path);
// Whether the ending is that of a file of attribute values.
bool is_attribute_file(std::string_view path);

}  // namespace zelvan
