#include "core/update.h"

#include <algorithm>
#include <unordered_map>

#include "core/families.h"
#include "core/number_text.h"

namespace zelvan {

namespace {

// Rows with further entries behind their own.
SparseRows merged(const SparseRows& rows, const std::vector<Queue::Entry>& entries, int first, int num_rows) {
    SparseRows result;
    const auto has = [&](const Queue::Entry& entry) { return entry.row >= first && entry.row < first + num_rows; };
    result.start.assign(num_rows + 1, 0);
    for (const auto& entry : entries)
        if (has(entry)) ++result.start[entry.row - first + 1];
    for (int i = 0; i < num_rows; ++i) result.start[i + 1] += result.start[i] + rows.start[i + 1] - rows.start[i];
    result.col.resize(result.start.back());
    result.val.resize(result.start.back());
    std::vector<std::int64_t> next(result.start.begin(), result.start.end() - 1);
    for (int i = 0; i < num_rows; ++i) {
        const std::int64_t length = rows.start[i + 1] - rows.start[i];
        std::copy_n(rows.col.begin() + rows.start[i], length, result.col.begin() + next[i]);
        std::copy_n(rows.val.begin() + rows.start[i], length, result.val.begin() + next[i]);
        next[i] += length;
    }
    for (const auto& entry : entries) {
        if (!has(entry)) continue;
        const std::int64_t to = next[entry.row - first]++;
        result.col[to] = entry.col;
        result.val[to] = entry.val;
    }
    return result;
}

// `base` with the later of the writes to each column, without zeros.
SparseVector with_writes(const SparseVector* base, std::vector<std::pair<int, double>>& writes) {
    std::stable_sort(writes.begin(), writes.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    SparseVector result;
    const std::size_t num_base = base ? base->col.size() : 0;
    result.col.reserve(num_base + writes.size());
    result.val.reserve(num_base + writes.size());
    const auto add = [&](int col, double value) {
        if (value != 0.0) result.push_back(col, value);
    };
    std::size_t k = 0;
    for (std::size_t w = 0; w < writes.size(); ++w) {
        const int col = writes[w].first;
        if (w + 1 < writes.size() && writes[w + 1].first == col) continue;
        for (; k < num_base && base->col[k] < col; ++k) add(base->col[k], base->val[k]);
        if (k < num_base && base->col[k] == col) ++k;
        add(col, writes[w].second);
    }
    for (; k < num_base; ++k) add(base->col[k], base->val[k]);
    return result;
}

}  // namespace

Update::Update(Model& model) : model_(model), data_(model.data), queue_(model.queue), changed_(changes_problem()) {
    plan_entries();
    plan_helpers();
    plan_texts();
    plan_room();
    plan_options();
    plan_objectives();
    for_each_family(data_, [&](const auto& family) { plan_deletion(family.kKind); });
    check_sides(data_.rows, queue_.rows, rules::kSense, rules::kRightSide);
    check_sides(data_.qrows, queue_.qrows, rules::kQuadSense, rules::kQuadRightSide);
}

int Update::total(Kind kind) const {
    const int helpers = kind == Kind::kColumn ? static_cast<int>(queue_.helpers.size()) : 0;
    return data_.size(kind) + queue_.size(kind) + helpers;
}

// Names, tags and hints for the solver leave a solution valid.
bool Update::changes_problem() const {
    if (queue_.has_objects() || !queue_.entries.empty()) return true;
    if (std::any_of(queue_.deleted.begin(), queue_.deleted.end(), [](const auto& list) { return !list.empty(); }))
        return true;
    return std::any_of(queue_.writes.begin(), queue_.writes.end(),
                       [](const Write& write) { return write.rule->effect == Effect::kProblem; });
}

// Entries of new columns, helper columns among them, stand behind the entries of their rows. Only where rows of the
// model get some does that cost a pass over all rows.
void Update::plan_entries() {
    std::vector<Queue::Entry>& entries = queue_.entries;
    std::vector<Queue::Entry> with_helpers;
    const std::vector<Queue::Entry>* all = &entries;
    if (!queue_.helpers.empty()) {
        with_helpers = entries;
        int col = data_.cols.size() + queue_.cols.size();
        for (const auto& helper : queue_.helpers) with_helpers.push_back({helper.row, col++, 1.0});
        all = &with_helpers;
    }
    const int num_rows = data_.rows.size();
    for (const auto& entry : *all) (entry.row < num_rows ? merges_old_ : merges_added_) = true;
    if (merges_old_) old_rows_ = merged(data_.rows, *all, 0, num_rows);
    if (merges_added_) added_rows_ = merged(queue_.rows, *all, num_rows, queue_.rows.size());
}

void Update::plan_helpers() {
    helper_names_.reserve(queue_.helpers.size());
    for (const auto& helper : queue_.helpers) {
        const char* row_name = queue_.rows.names.get(helper.row - data_.rows.size());
        std::string& name = helper_names_.emplace_back(row_name ? std::string("Rg") + row_name : std::string());
        if (name.size() > ZVN_MAX_NAMELEN) name.clear();
        if (!name.empty()) text_bytes_[&data_.cols.names] += name.size() + 1;
    }
}

void Update::plan_texts() {
    std::size_t num_names[kNumKinds] = {};
    for (const TextWrite& write : queue_.texts) {
        if (!write.rule->names) continue;
        if (!write.value.empty()) text_bytes_[&write.rule->names(data_)] += write.value.size() + 1;
        if (write.rule->is_name) ++num_names[static_cast<int>(write.rule->kind)];
    }
    for (std::size_t kind = 0; kind < kNumKinds; ++kind)
        if (num_names[kind] > 0) model_.finders_[kind].expect_renames(num_names[kind]);
}

void Update::plan_room() {
    const auto bytes = [&](const Names& names) {
        const auto found = text_bytes_.find(&names);
        return found == text_bytes_.end() ? 0 : found->second;
    };
    const auto plan = [&](auto& family, auto& added, int more) {
        make_room_for(family, added, more, bytes(family.names));
        // What takes over another's arrays writes into those.
        Names& tags = family.size() == 0 ? added.tags : family.tags;
        tags.make_room(added.size() + more, bytes(family.tags));
    };
    plan(data_.cols, queue_.cols, static_cast<int>(queue_.helpers.size()));
    plan(data_.rows, queue_.rows, 0);
    plan(data_.sos, queue_.sos, 0);
    plan(data_.qrows, queue_.qrows, 0);
    if (!merges_old_ && !merges_added_) return;
    SparseRows& old = merges_old_ ? old_rows_ : static_cast<SparseRows&>(data_.rows);
    const SparseRows& added = merges_added_ ? added_rows_ : static_cast<SparseRows&>(queue_.rows);
    if (data_.rows.size() == 0) return;
    make_room(old.start, added.start.size());
    make_room(old.col, added.col.size());
    make_room(old.val, added.val.size());
}

void Update::plan_options() {
    for (const Write& write : queue_.writes) {
        if (!write.rule->option) continue;
        plan_option(write.rule->kind, *write.rule->option);
        // A basis is one of columns and rows: what isn't set of a solved one stays.
        if (*write.rule->option == Option::kColumnBasis && !model_.solution.cbasis.empty())
            plan_option(Kind::kRow, Option::kRowBasis);
        if (*write.rule->option == Option::kRowBasis && !model_.solution.vbasis.empty())
            plan_option(Kind::kColumn, Option::kColumnBasis);
        if (write.rule == &rules::kNumStarts)
            drops_starts_ = write.value == 0.0;
        else if (*write.rule->option == Option::kStart)
            drops_starts_ = false;
    }
    for_each_family(data_, [&](auto& family) { family.optional.make_room(options_.size()); });
}

void Update::plan_option(Kind kind, Option option) {
    if (data_.family(kind).optional.find(option)) return;
    for (const NewOption& planned : options_)
        if (planned.option == option && planned.kind == kind) return;
    std::vector<double> values(total(kind), unset(option));
    const std::vector<int>* solved = option == Option::kColumnBasis ? &model_.solution.vbasis
                                     : option == Option::kRowBasis  ? &model_.solution.cbasis
                                                                    : nullptr;
    if (solved) std::copy(solved->begin(), solved->end(), values.begin());
    options_.push_back({kind, option, std::move(values)});
}

void Update::plan_objectives() {
    std::size_t most = data_.objectives.size(), size = most;
    const auto base_of = [&](int number) -> const SparseVector* {
        return static_cast<std::size_t>(number) < data_.objectives.size() ? &data_.objectives[number].coeff : nullptr;
    };
    for (const Write& write : queue_.writes) {
        if (write.rule == &rules::kNumObjectives) {
            size = static_cast<std::size_t>(write.value);
            // Objectives that go take their coefficients along, also where others get their numbers later.
            for (std::size_t k = std::max<std::size_t>(size, 1); k < data_.objectives.size(); ++k)
                coefficients_[static_cast<int>(k)];
            for (auto at = coefficients_.lower_bound(static_cast<int>(size)); at != coefficients_.end(); ++at)
                at->second = {};
        } else if (write.rule == &rules::kObjective) {
            const ObjectiveWrite& objective = queue_.objectives[write.index];
            if (objective.number > 0) coefficients_[objective.number] = {&objective.fields.coeff, {}, {}};
            size = std::max(size, static_cast<std::size_t>(objective.number + 1));
        } else if (write.rule == &rules::kObjectiveCost && write.number > 0) {
            const auto [at, added] = coefficients_.try_emplace(write.number);
            if (added) at->second.base = base_of(write.number);
            at->second.writes.emplace_back(write.index, write.value);
        }
        most = std::max(most, size);
    }
    data_.objectives.reserve(most);
    for (auto& [number, planned] : coefficients_) planned.result = with_writes(planned.base, planned.writes);
}

void Update::plan_deletion(Kind kind) {
    const std::vector<int>& deleted = queue_.deleted[static_cast<int>(kind)];
    if (deleted.empty()) return;
    Deletion& deletion = this->deletion(kind);
    deletion.keep.assign(total(kind), 1);
    for (int i : deleted) deletion.keep[i] = 0;
    deletion.number.resize(deletion.keep.size());
    int next = 0;
    for (std::size_t i = 0; i < deletion.keep.size(); ++i) deletion.number[i] = deletion.keep[i] ? next++ : -1;
    if (model_.changes.since == 0 || (kind != Kind::kColumn && kind != Kind::kRow)) return;
    deletion.followed =
        (kind == Kind::kColumn ? model_.changes.cols : model_.changes.rows).deleted_after(deletion.keep);
}

// Sense and right-hand side of a row may be written one after the other, so they are held against each other here.
template <class Family>
void Update::check_sides(const Family& rows, const Family& queued, const WriteRule& sense,
                         const WriteRule& right) const {
    struct Sides {
        char sense;
        double right, lower;
    };
    std::unordered_map<int, Sides> written;
    const int num_rows = rows.size();
    const auto sides_of = [](const Family& family, int i) {
        Sides sides{family.sense[i], family.rhs[i], -kInfinity};
        if constexpr (std::is_same_v<Family, Rows>) sides.lower = family.lower[i];
        return sides;
    };
    for (const Write& write : queue_.writes) {
        if (write.rule != &sense && write.rule != &right) continue;
        const int i = write.index;
        Sides& sides =
            written.try_emplace(i, i < num_rows ? sides_of(rows, i) : sides_of(queued, i - num_rows)).first->second;
        if (write.rule == &sense)
            sides.sense = static_cast<char>(write.value);
        else
            sides.right = clipped(write.value);
    }
    for (const auto& [i, sides] : written) {
        const std::vector<char>& keep = deletion(Family::kKind).keep;
        if (!keep.empty() && !keep[i]) continue;
        const char* fault = side_fault(sides.sense, sides.right, sides.lower);
        if (!fault) continue;
        const char* name = i < num_rows ? rows.names.get(i) : queued.names.get(i - num_rows);
        throw Error(ZVN_ERROR_VALUE_OUT_OF_RANGE, capitalized(Family::kKind) + " '" +
                                                      (name ? name : ModelData::default_name(Family::kKind, i)) +
                                                      "' has the right-hand side " + number_text(sides.right) +
                                                      " with sense '" + sides.sense + "': " + fault);
    }
}

void Update::commit() noexcept {
    append_additions();
    append_helpers();
    for (NewOption& option : options_)
        data_.family(option.kind).optional.adopt(option.option, std::move(option.values));
    apply_writes();
    if (drops_starts_) data_.cols.optional.erase(Option::kStart);
    delete_objects();
    note_changes();
    std::swap(queue_, fresh_);
    if (changed_) model_.discard_solution();
}

void Update::append_additions() noexcept {
    append(data_.cols, queue_.cols);
    if (merges_old_) std::swap(static_cast<SparseRows&>(data_.rows), old_rows_);
    if (merges_added_) std::swap(static_cast<SparseRows&>(queue_.rows), added_rows_);
    append(data_.rows, queue_.rows);
    append(data_.sos, queue_.sos);
    append(data_.qrows, queue_.qrows);
}

void Update::append_helpers() noexcept {
    for (std::size_t k = 0; k < queue_.helpers.size(); ++k)
        data_.cols.push_back(queue_.helpers[k].lb, queue_.helpers[k].ub, 0.0, 'C', helper_names_[k]);
}

void Update::apply_writes() noexcept {
    for (const Write& write : queue_.writes) {
        write.rule->apply(data_, write);
        if (write.rule == &rules::kText)
            apply_text(queue_.texts[write.index]);
        else if (write.rule == &rules::kObjective)
            apply_objective(queue_.objectives[write.index]);
        else if (write.rule == &rules::kPwl)
            apply_pwl(queue_.pwl[write.index]);
    }
    for (auto& [number, planned] : coefficients_)
        if (static_cast<std::size_t>(number) < data_.objectives.size())
            std::swap(data_.objectives[number].coeff, planned.result);
}

void Update::apply_text(TextWrite& write) noexcept {
    if (write.rule->text) {
        write.rule->text(data_, write.number).swap(write.value);
        return;
    }
    write.rule->names(data_).set(write.index, write.value);
    if (write.rule->is_name) model_.finders_[static_cast<int>(write.rule->kind)].renamed(write.index);
}

// Coefficients of an objective behind the first are planned.
void Update::apply_objective(ObjectiveWrite& write) noexcept {
    if (write.sense != 0) data_.sense = write.sense;
    const std::size_t number = std::max(write.number, 0);
    const double constant = write.fields.constant;
    if (write.number >= 0) {
        if (data_.objectives.size() <= number) data_.objectives.resize(number + 1);
        std::swap(data_.objectives[number], write.fields);
    }
    if (number > 0) return;
    data_.obj_constant = constant;
    data_.pwl_obj.erase(data_.pwl_obj.begin(), data_.pwl_obj.lower_bound(write.num_cols));
    std::fill_n(data_.cols.obj.begin(), write.num_cols, 0.0);
    for (std::size_t k = 0; k < write.col.size(); ++k) data_.cols.obj[write.col[k]] += write.val[k];
    std::swap(data_.quad_obj, write.quad);
}

void Update::apply_pwl(PwlWrite& write) noexcept {
    data_.pwl_obj.erase(write.col);
    if (write.term.empty()) return;
    data_.cols.obj[write.col] = 0.0;
    data_.pwl_obj.insert(std::move(write.term));
}

void Update::delete_objects() noexcept {
    if (!deletion(Kind::kColumn).keep.empty()) renumber_columns();
    for_each_family(data_, [&](auto& family) {
        const std::vector<char>& keep = deletion(family.kKind).keep;
        if (!keep.empty()) compact(family, keep);
    });
}

void Update::renumber_columns() noexcept {
    const std::vector<int>& number = deletion(Kind::kColumn).number;
    renumber(data_.rows, number);
    renumber(data_.sos, number);
    renumber(data_.qrows, number);
    renumber(data_.quad_obj, number);
    for (Objective& objective : data_.objectives) renumber(objective.coeff, number);
    std::map<int, PwlPoints> terms;
    while (!data_.pwl_obj.empty()) {
        auto term = data_.pwl_obj.extract(data_.pwl_obj.begin());
        term.key() = number[term.key()];
        if (term.key() >= 0) terms.insert(terms.end(), std::move(term));
    }
    data_.pwl_obj.swap(terms);
}

void Update::note_changes() noexcept {
    for (std::size_t kind = 0; kind < kNumKinds; ++kind)
        if (!deletions_[kind].keep.empty()) model_.finders_[kind].renumber(deletions_[kind].number);
    if (auto& list = deletion(Kind::kColumn).followed; !list.empty()) model_.changes.cols.deleted.swap(list);
    if (auto& list = deletion(Kind::kRow).followed; !list.empty()) model_.changes.rows.deleted.swap(list);
    ++model_.stamp;
}

}  // namespace zelvan
