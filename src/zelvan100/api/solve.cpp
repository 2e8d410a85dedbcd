#include "solve/solve.h"

#include "api/guard.h"

using zelvan::Model;

int ZVNoptimize(ZVNmodel* model) {
    return zelvan::change_model(model, [](Model& object) {
        object.update();
        zelvan::optimize(object);
    });
}

void ZVNterminate(ZVNmodel* model) {
    if (Model* object = zelvan::model_of(model)) object->stop = true;
}

void ZVNsetsignal(ZVNmodel* model) {
    if (Model* object = zelvan::model_of(model)) object->watch_signal = true;
}
