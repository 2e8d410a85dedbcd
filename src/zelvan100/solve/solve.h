#pragma once

namespace zelvan {

class Model;

// Solves the model as it stands after an update and fills model.solution. Throws Error on failure.
// Progress goes to model.env.log; model.stop and the limits of model.env.params are polled.
void optimize(Model& model);

}  // namespace zelvan
