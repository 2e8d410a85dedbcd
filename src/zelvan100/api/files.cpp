// Models and data of models in files, told apart by the ending of the name.

#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "api/guard.h"
#include "io/data_files.h"
#include "io/io.h"

using namespace zelvan;

namespace {

std::string report(const std::string& path, const ModelData& data, double seconds) {
    const char* format = model_format(path) == FileFormat::kMps ? "MPS" : "LP";
    char time[48];
    std::snprintf(time, sizeof time, "Reading time = %.2f seconds\n", seconds);
    return "Read " + std::string(format) + " format model from file " + path + "\n" + time +
           (data.name.empty() ? "" : data.name + ": ") + std::to_string(data.rows.size()) + " rows, " +
           std::to_string(data.cols.size()) + " columns, " + std::to_string(data.rows.num_entries()) + " nonzeros\n";
}

}  // namespace

int ZVNreadmodel(ZVNenv* env, const char* filename, ZVNmodel** model) {
    if (model) *model = nullptr;
    return with_env(env, [&](Env& parent) {
        require(filename, "filename");
        require(model, "model");
        if (!parent.started)
            throw Error(ZVN_ERROR_INVALID_ARGUMENT,
                        "The environment has not been started, so no model can be made on it");
        const auto begin = std::chrono::steady_clock::now();
        auto created = std::make_unique<Model>(parent);
        std::vector<std::string> messages;
        created->data =
            read_model(filename, [&](std::string_view line) { messages.push_back(std::string(line) + "\n"); });
        if (parent.params.get_int(Param::IgnoreNames)) created->data.drop_names();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        messages.push_back(report(filename, created->data, taken.count()));
        *model = new_model_ticket(created.get());
        // The receiver of the messages may free the environment; the log of the new model is the same.
        const Env& log = created.release()->env;
        for (const std::string& message : messages) log.log(message);
    });
}

int ZVNread(ZVNmodel* model, const char* filename) {
    return change_model(model, [&](Model& m) {
        require(filename, "filename");
        read_data(m, filename);
    });
}

int ZVNwrite(ZVNmodel* model, const char* filename) {
    return change_model(model, [&](Model& m) {
        require(filename, "filename");
        write_any(m, filename);
    });
}

int ZVNismodelfile(const char* filename) { return filename && model_format(filename) != FileFormat::kNone; }

int ZVNisattrfile(const char* filename) { return filename && is_attribute_file(filename); }
