#include "io/written_names.h"

#include <algorithm>

#include "io/name_table.h"
#include "io/source.h"

namespace zelvan {

namespace {

std::string numbered(char letter, int i) { return letter + std::to_string(i); }

// All names, given or default; if one doesn't suit, `fault` says which and why, and names are numbered.
Names collect(const Names& given, int size, char letter, WrittenNames::Holds holds, std::string& fault) {
    Names names;
    for (int i = 0; i < size; ++i) {
        if (const char* name = given.get(i))
            names.push_back(name);
        else
            names.push_back(numbered(letter, i));
    }
    NameTable distinct;
    for (int i = 0; i < size && fault.empty(); ++i) {
        const std::string_view name = names.get(i);
        if (!holds(name))
            fault = quoted(name) + " can't be written";
        else if (!distinct.add(name))
            fault = quoted(name) + " stands for two of them";
    }
    if (fault.empty()) return names;
    names.clear();
    for (int i = 0; i < size; ++i) names.push_back(numbered(letter, i));
    return names;
}

// What can be read back from the rest of a line: clean text without blanks at its ends.
bool is_one_line(std::string_view name) {
    return !name.empty() && name.size() <= ZVN_MAX_NAMELEN && name.front() != ' ' && name.back() != ' ' &&
           is_clean_name(name);
}

}  // namespace

WrittenNames::WrittenNames(const ModelData& data, Holds holds, const char* format, const Warn& warn) {
    std::string col_fault, row_fault, objective_fault;
    cols_ = collect(data.cols.names, data.cols.size(), 'C', holds, col_fault);
    rows_ = collect(data.rows.names, data.rows.size(), 'R', holds, row_fault);
    collect_objectives(data, holds, objective_fault);
    const bool keep_name = is_one_line(data.name);
    if (keep_name) model_name_ = data.name;

    std::string faults;
    const auto add = [&](const std::string& text) { faults += (faults.empty() ? "" : "; ") + text; };
    if (!col_fault.empty()) add("variables are numbered, because " + col_fault);
    if (!row_fault.empty()) add("constraints are numbered, because " + row_fault);
    if (!objective_fault.empty()) add("an objective's name is left out, " + objective_fault);
    if (!keep_name && !data.name.empty()) add("the model's name is left out");
    if (!faults.empty()) warn(std::string("Warning: names that don't suit ") + format + " form: " + faults);
}

void WrittenNames::collect_objectives(const ModelData& data, Holds holds, std::string& fault) {
    for (const Objective& objective : data.objectives) {
        const bool kept = objective.name.empty() || (holds(objective.name) && !is_taken(objective.name));
        objectives_.push_back(kept ? objective.name : std::string());
        if (!kept && fault.empty()) fault = quoted(objective.name);
    }
}

bool WrittenNames::is_taken(std::string_view name) const {
    for (int i = 0; i < rows_.size(); ++i)
        if (rows_.get(i) == name) return true;
    return std::find(objectives_.begin(), objectives_.end(), name) != objectives_.end();
}

}  // namespace zelvan
