#pragma once
// Objects that a call can't use: of another model, not added yet, removed.

#include "model.h"

namespace zelvanpy {

// Raises ZelvanError(code, text) with a __cause__ that tells of the object and the models: "Var 'y' belongs to model
// 'b', this call is on another, model 'a'".
[[noreturn]] void refuse_stranger(const Model& model, const Handle& handle, int code, const char* text);

}  // namespace zelvanpy
