#include "io/written_names.h"

#include <algorithm>

#include "io/name_table.h"
#include "io/source.h"

namespace zelvan {

namespace {

// Names that a writer replaces: how many, and what is wrong with the first.
struct Replaced {
    int count = 0;
    std::string fault;

    void add(std::string_view name, const char* what) {
        if (count++ == 0) fault = quoted(name) + what;
    }
};

// The names of a family as they are written, none of them like one of `others`. Where an object's own name can't be, it
// gets the default one, lengthened until no other object has it.
Names collect(const Names& given, const Names& others, Kind kind, WrittenNames::Holds holds, Replaced& replaced) {
    NameTable kept;
    for (int i = 0; i < others.size(); ++i) kept.add(others.get(i));
    std::vector<char> keeps(given.size(), 0);
    for (int i = 0; i < given.size(); ++i) {
        const char* name = given.get(i);
        if (!name) continue;
        if (!holds(name))
            replaced.add(name, " can't be written");
        else if (!kept.add(name))
            replaced.add(name, " stands for two of them");
        else
            keeps[i] = 1;
    }
    Names names;
    for (int i = 0; i < given.size(); ++i) {
        if (keeps[i]) {
            names.push_back(given.get(i));
            continue;
        }
        std::string name = ModelData::default_name(kind, i);
        if (!given.has(i) && kept.find(name) >= 0) replaced.add(name, " stands for two of them");
        while (kept.find(name) >= 0) name += '_';
        names.push_back(name);
    }
    return names;
}

// What can be read back from the rest of a line: clean text without blanks at its ends.
bool is_one_line(std::string_view name) {
    return !name.empty() && name.size() <= ZVN_MAX_NAMELEN && name.front() != ' ' && name.back() != ' ' &&
           is_clean_name(name);
}

}  // namespace

WrittenNames::WrittenNames(const ModelData& data, Holds holds, Holds holds_label, const char* format,
                           const Warn& warn) {
    std::string faults;
    const auto add = [&](const std::string& text) { faults += (faults.empty() ? "" : "; ") + text; };
    const auto collect_of = [&](Kind kind, const Names& given, Holds suits, const Names& others = {}) {
        Replaced replaced;
        Names names = collect(given, others, kind, suits, replaced);
        const KindSpec& spec = spec_of(kind);
        if (replaced.count > 0)
            add(std::to_string(replaced.count) + " " + (replaced.count == 1 ? spec.singular : spec.plural) +
                " numbered, because " + replaced.fault);
        return names;
    };
    cols_ = collect_of(Kind::kColumn, data.cols.names, holds);
    rows_ = collect_of(Kind::kRow, data.rows.names, holds);
    sos_ = collect_of(Kind::kSos, data.sos.names, holds_label);
    quad_rows_ = collect_of(Kind::kQuadRow, data.qrows.names, holds, rows_);

    std::string objective_fault;
    collect_objectives(data, holds, objective_fault);
    if (!objective_fault.empty()) add("an objective's name is left out, " + objective_fault);
    const bool keep_name = is_one_line(data.name);
    if (keep_name) model_name_ = data.name;
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
    for (const Names* names : {&rows_, &quad_rows_})
        for (int i = 0; i < names->size(); ++i)
            if (names->get(i) == name) return true;
    return std::find(objectives_.begin(), objectives_.end(), name) != objectives_.end();
}

}  // namespace zelvan
