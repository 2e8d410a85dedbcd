#include "solve/solve.h"

#include "api/guard.h"
#include "io/data_files.h"

using zelvan::Model;

namespace {

// A solve without a solution leaves a line instead of a file; any other fault is one of the call.
void write_result_file(Model& model) {
    const std::string& path = model.env.params.get_str(zelvan::Param::ResultFile);
    if (path.empty()) return;
    try {
        zelvan::write_any(model, path);
    } catch (const zelvan::Error& e) {
        if (e.code() != ZVN_ERROR_DATA_NOT_AVAILABLE) throw;
        model.env.log("File '" + path + "' was not written: " + e.text() + "\n");
    }
}

}  // namespace

int ZVNoptimize(ZVNmodel* model) {
    return zelvan::change_model(model, [](Model& object) {
        object.update();
        zelvan::optimize(object);
        write_result_file(object);
    });
}

void ZVNterminate(ZVNmodel* model) {
    if (Model* object = zelvan::model_of(model)) object->stop = true;
}

void ZVNsetsignal(ZVNmodel* model) {
    if (Model* object = zelvan::model_of(model)) object->watch_signal = true;
}
