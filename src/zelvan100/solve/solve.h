#pragma once

namespace zelvan {

class Model;

// Updates and solves the model, fills model.solution and writes ResultFile; changes from elsewhere are refused
// meanwhile. Throws Error on failure. Progress goes to model.env.log; model.stop and the limits of model.env.params are
// polled.
void optimize(Model& model);

}  // namespace zelvan
