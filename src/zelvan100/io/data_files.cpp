#include "io/data_files.h"

#include "io/basis_file.h"
#include "io/endings.h"
#include "io/io.h"
#include "io/json.h"
#include "io/prm.h"
#include "io/values.h"

namespace zelvan {

namespace {

// What becomes of queued changes when a file is written. An update discards the solution, so that what belongs to a
// solution is written without one.
enum class Queued { kStay, kAppliedUnlessSolved, kApplied };

struct DataFile {
    std::string_view ending;
    Queued queued;
    void (*read)(Model& model, const std::string& path);
    void (*write)(Model& model, const std::string& path);
};

constexpr DataFile kDataFiles[] = {
    {".prm", Queued::kStay, [](Model& m, const std::string& path) { read_params(m.env, path); },
     [](Model& m, const std::string& path) { write_params(m.env, path); }},
    {".sol", Queued::kStay, read_start, write_solution},
    {".mst", Queued::kAppliedUnlessSolved, read_start, write_start},
    {".ord", Queued::kApplied, read_priorities, write_priorities},
    {".bas", Queued::kAppliedUnlessSolved, read_basis, write_basis},
    {".json", Queued::kStay, nullptr, [](Model& m, const std::string& path) { write_file(path, json_solution(m)); }},
};

const DataFile* data_file(std::string_view path) {
    for (const DataFile& file : kDataFiles)
        if (has_ending(without_gz(path), file.ending)) return &file;
    return nullptr;
}

[[noreturn]] void refuse_ending(const std::string& path, const char* action) {
    const std::size_t slash = path.rfind('/') + 1;  // 0 when there is none
    const std::size_t dot = path.rfind('.');
    const std::string ending = dot == path.npos || dot < slash ? "no ending" : "the ending '" + path.substr(dot) + "'";
    throw Error(ZVN_ERROR_NOT_SUPPORTED,
                std::string(action) + " a file with " + ending + " is not supported: '" + path + "'");
}

}  // namespace

void read_data(Model& model, const std::string& path) {
    const DataFile* file = data_file(path);
    if (!file || !file->read) refuse_ending(path, "Reading");
    file->read(model, path);
}

void write_any(Model& model, const std::string& path) {
    if (model_format(path) != FileFormat::kNone) {
        model.update();
        std::string warnings;
        write_model(model.data, path, [&](std::string_view line) { (warnings += line) += '\n'; });
        // Last, as the receiver may change or free the model.
        if (!warnings.empty()) model.env.log(warnings);
        return;
    }
    const DataFile* file = data_file(path);
    if (!file) refuse_ending(path, "Writing");
    const bool solved = model.solution.status != ZVN_LOADED;
    if (file->queued == Queued::kApplied || (file->queued == Queued::kAppliedUnlessSolved && !solved)) model.update();
    file->write(model, path);
}

bool is_attribute_file(std::string_view path) {
    const DataFile* file = data_file(path);
    return file && file->queued == Queued::kApplied;
}

}  // namespace zelvan
