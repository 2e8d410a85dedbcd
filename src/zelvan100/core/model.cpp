#include "core/model.h"

#include <charconv>

#include "core/update.h"

namespace zelvan {

namespace {

// The number in a default name such as "C17"; -1 when `name` is none.
int default_index(std::string_view name, Kind kind) {
    const std::string_view prefix = spec_of(kind).prefix;
    if (name.size() <= prefix.size() || name.substr(0, prefix.size()) != prefix) return -1;
    const std::string_view digits = name.substr(prefix.size());
    if (digits[0] == '0' && digits.size() > 1) return -1;
    int index = -1;
    const auto [end, fault] = std::from_chars(digits.data(), digits.data() + digits.size(), index);
    return fault == std::errc() && end == digits.data() + digits.size() ? index : -1;
}

}  // namespace

Model::Model(const Env& parent) : env(parent) { env.error.clear(); }

Model::~Model() = default;

void Model::discard_solution() { solution = Solution(); }

int Model::find(Kind kind, std::string_view name) {
    const Names& names = data.family(kind).names;
    if (const int found = finders_[static_cast<int>(kind)].find(names, name); found >= 0) return found;
    const int i = default_index(name, kind);
    return i >= 0 && i < names.size() && !names.has(i) ? i : -1;
}

Model::BasisStatuses Model::basis_statuses(Kind kind) const {
    const bool cols = kind == Kind::kColumn;
    if (const auto* set =
            cols ? data.cols.optional.find(Option::kColumnBasis) : data.rows.optional.find(Option::kRowBasis))
        return {set, nullptr};
    const std::vector<int>& solved = cols ? solution.vbasis : solution.cbasis;
    return {nullptr, solved.empty() ? nullptr : &solved};
}

void Model::update() {
    if (queue.empty()) return;
    Update update(*this);
    update.commit();
}

}  // namespace zelvan
