#include "io/sos_sets.h"

#include <cmath>

namespace zelvan {

int sos_type(std::string_view word) {
    if (word.size() != 2 || (word[0] != 'S' && word[0] != 's')) return 0;
    return word[1] == '1' ? 1 : word[1] == '2' ? 2 : 0;
}

bool SosReader::begin(int line, std::string_view type, std::string_view name) {
    if (sos_type(type) == 0) return false;
    source_.check_name(line, name);
    if (!name.empty() && !names_.add(name)) source_.fail(line, "set " + quoted(name) + " appears twice");
    sets_.push_back(sos_type(type), name);
    return true;
}

void SosReader::add(int line, int col, std::string_view name, double weight) {
    if (std::fabs(weight) >= kInfinityThreshold) source_.fail(line, "the weight of " + quoted(name) + " is too large");
    if (latest_set_.size() <= static_cast<std::size_t>(col)) latest_set_.resize(col + 1, 0);
    if (latest_set_[col] == sets_.size()) source_.fail(line, quoted(name) + " stands twice in one set");
    latest_set_[col] = sets_.size();
    sets_.col.push_back(col);
    sets_.val.push_back(weight);
    sets_.start.back() = static_cast<std::int64_t>(sets_.col.size());
}

}  // namespace zelvan
