// Models and data of models in files, told apart by the ending of the name.

#include <chrono>
#include <cstdio>

#include "api/guard.h"
#include "io/io.h"
#include "io/json.h"
#include "io/prm.h"

using namespace zelvan;

namespace {

struct DataFile {
    std::string_view ending;
    bool attributes;  // holds attribute values, so the queued changes belong into it
    void (*read)(Model& model, const std::string& path);
    void (*write)(Model& model, const std::string& path);
};

constexpr DataFile kDataFiles[] = {
    {".prm", false, [](Model& m, const std::string& path) { read_params(m.env, path); },
     [](Model& m, const std::string& path) { write_params(m.env, path); }},
    {".json", false, nullptr, [](Model& m, const std::string& path) { write_file(path, json_solution(m)); }},
};

const DataFile* data_file(std::string_view path) {
    if (path.size() > 3 && path.substr(path.size() - 3) == ".gz") path.remove_suffix(3);
    for (const DataFile& file : kDataFiles)
        if (path.size() > file.ending.size() && path.substr(path.size() - file.ending.size()) == file.ending)
            return &file;
    return nullptr;
}

[[noreturn]] void refuse_ending(const std::string& path, const char* action) {
    const std::size_t slash = path.rfind('/') + 1;  // 0 when there is none
    const std::size_t dot = path.rfind('.');
    const std::string ending = dot == path.npos || dot < slash ? "no ending" : "the ending '" + path.substr(dot) + "'";
    throw Error(ZVN_ERROR_NOT_SUPPORTED,
                std::string(action) + " a file with " + ending + " is not supported: '" + path + "'");
}

void log_model(Env& env, const std::string& path, const ModelData& data, double seconds) {
    const char* format = model_format(path) == FileFormat::kMps ? "MPS" : "LP";
    char time[48];
    std::snprintf(time, sizeof time, "Reading time = %.2f seconds\n", seconds);
    env.log("Read " + std::string(format) + " format model from file " + path + "\n" + time +
            (data.name.empty() ? "" : data.name + ": ") + std::to_string(data.rows.size()) + " rows, " +
            std::to_string(data.cols.size()) + " columns, " + std::to_string(data.rows.num_entries()) + " nonzeros\n");
}

Warn warn_to(Env& env) {
    return [&env](std::string_view line) { env.log(std::string(line) + "\n"); };
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
        created->data = read_model(filename, warn_to(parent));
        if (parent.params.get_int(Param::IgnoreNames)) created->data.drop_names();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        log_model(parent, filename, created->data, taken.count());
        *model = new_model_ticket(created.get());
        created.release();
    });
}

int ZVNread(ZVNmodel* model, const char* filename) {
    return change_model(model, [&](Model& m) {
        require(filename, "filename");
        const DataFile* file = data_file(filename);
        if (!file || !file->read) refuse_ending(filename, "Reading");
        file->read(m, filename);
    });
}

int ZVNwrite(ZVNmodel* model, const char* filename) {
    return change_model(model, [&](Model& m) {
        require(filename, "filename");
        if (model_format(filename) != FileFormat::kNone) {
            m.update();
            return write_model(m.data, filename, warn_to(m.env));
        }
        const DataFile* file = data_file(filename);
        if (!file) refuse_ending(filename, "Writing");
        if (file->attributes) m.update();
        file->write(m, filename);
    });
}

int ZVNismodelfile(const char* filename) { return filename && model_format(filename) != FileFormat::kNone; }

int ZVNisattrfile(const char* filename) {
    const DataFile* file = filename ? data_file(filename) : nullptr;
    return file && file->attributes;
}
