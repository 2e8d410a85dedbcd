#pragma once

namespace zelvan {

class Model;

// Updates and solves the model, fills model.solution and writes ResultFile. Meanwhile changes of the model from
// elsewhere are refused, and changed parameters, save those of the log, hold for the next solve. Throws Error on
// failure. Progress goes to model.env.log; model.stop and the limits are polled.
void optimize(Model& model);

}  // namespace zelvan
