#include "io/values.h"

#include <cmath>

#include "io/io.h"
#include "io/lines.h"
#include "io/number.h"
#include "io/source.h"

namespace zelvan {

namespace {

constexpr std::string_view kBlank = " \t\r";

void append_line(std::string& text, const ModelData& data, int j, double value) {
    const std::string name = data.col_name(j);
    if (!is_clean_name(name) || name[0] == '#' || kBlank.find(name.front()) != kBlank.npos ||
        kBlank.find(name.back()) != kBlank.npos)
        throw Error(ZVN_ERROR_FILE_WRITE,
                    "Name " + quoted(name) + " of variable " + std::to_string(j) + " can't stand in a file of values");
    text += name + " ";
    append_number(text, value);
    text += '\n';
}

void write_some(const Model& model, std::string text, const std::vector<double>& values, double unset,
                const std::string& path) {
    for (int j = 0; j < model.num_cols(); ++j)
        if (values[j] != unset) append_line(text, model.data, j, values[j]);
    write_file(path, text);
}

struct NamedValues {
    std::vector<int> col;
    std::vector<double> value;
    int unknown = 0;
};

void read_line(Model& model, const Source& file, int line, std::string_view text, NamedValues& read) {
    const std::size_t first = text.find_first_not_of(kBlank);
    if (first == text.npos || text[first] == '#') return;
    text = text.substr(first, text.find_last_not_of(kBlank) - first + 1);
    const std::size_t blank = text.find_last_of(kBlank);
    double value = 0.0;
    if (blank == text.npos) file.fail(line, "found " + quoted(text) + ", a name and a number were expected");
    if (!parse_number(text.substr(blank + 1), value))
        file.fail(line, "found " + quoted(text.substr(blank + 1)) + " where a number was expected");
    const int col = model.find_col(text.substr(0, text.find_last_not_of(kBlank, blank) + 1));
    if (col < 0) {
        ++read.unknown;
        return;
    }
    read.col.push_back(col);
    read.value.push_back(value);
}

NamedValues read_values(Model& model, const std::string& path) {
    const Source file = Source::read(path);
    NamedValues read;
    Lines lines(file.text);
    for (std::string_view line; lines.next(line);) read_line(model, file, lines.number(), line, read);
    return read;
}

// Last, as the receiver of the message may change or free the model.
void log_unknown(Model& model, const std::string& path, int unknown) {
    if (unknown > 0)
        model.env.log("File '" + path + "': " + std::to_string(unknown) +
                      " values left out, whose variables are not in the model\n");
}

}  // namespace

void write_solution(const ModelData& data, const std::vector<double>& x, double objective, const std::string& path) {
    std::string text = "# Objective value = ";
    append_number(text, objective);
    text += '\n';
    for (int j = 0; j < data.cols.size(); ++j) append_line(text, data, j, x[j]);
    write_file(path, text);
}

void write_solution(Model& model, const std::string& path) {
    if (model.solution.count() == 0)
        throw Error(ZVN_ERROR_DATA_NOT_AVAILABLE, "There is no solution to write to file '" + path + "'");
    write_solution(model.data, model.solution.x, model.solution.obj_val, path);
}

void write_start(Model& model, const std::string& path) {
    const std::string header = "# MIP start\n";
    if (model.solution.count() > 0) return write_some(model, header, model.solution.x, kUndefined, path);
    const std::vector<double>* start = model.data.cols.optional.find(Option::kStart);
    if (!start)
        throw Error(ZVN_ERROR_DATA_NOT_AVAILABLE, "There is no solution or start to write to file '" + path + "'");
    write_some(model, header, *start, kUndefined, path);
}

void write_priorities(Model& model, const std::string& path) {
    const std::vector<double>* priorities = model.data.cols.optional.find(Option::kBranchPriority);
    write_some(model, "# Branching priorities\n", priorities ? *priorities : std::vector<double>(model.num_cols(), 0.0),
               0.0, path);
}

void read_start(Model& model, const std::string& path) {
    const NamedValues read = read_values(model, path);
    model.write_numbers(rules::kOption<Kind::kColumn, Option::kStart>, read.col, read.value);
    log_unknown(model, path, read.unknown);
}

void read_priorities(Model& model, const std::string& path) {
    const NamedValues read = read_values(model, path);
    for (std::size_t k = 0; k < read.value.size(); ++k) {
        if (!(std::fabs(read.value[k]) <= ZVN_MAXINT) || read.value[k] != std::floor(read.value[k]))
            throw Error(ZVN_ERROR_FILE_READ, "File '" + path + "': the priority of variable " +
                                                 quoted(model.data.col_name(read.col[k])) + " is not an integer");
    }
    model.write_numbers(rules::kOption<Kind::kColumn, Option::kBranchPriority>, read.col, read.value);
    log_unknown(model, path, read.unknown);
}

}  // namespace zelvan
