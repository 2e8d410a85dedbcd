#include "solve/solve.h"

#include "api/guard.h"

int ZVNoptimize(ZVNmodel* model) { return zelvan::with_model(model, zelvan::optimize); }

void ZVNterminate(ZVNmodel* model) {
    if (zelvan::Model* object = zelvan::model_of(model)) object->stop = true;
}

void ZVNsetsignal(ZVNmodel* model) {
    if (zelvan::Model* object = zelvan::model_of(model)) object->watch_signal = true;
}
