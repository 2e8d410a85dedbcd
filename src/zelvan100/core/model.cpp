// The update: additions are spliced in, writes applied in order, deletions compacted, each in one pass.

#include "core/model.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "attr/attr.h"

namespace zelvan {

namespace {

double clip(double value) { return std::abs(value) >= kInfinityThreshold ? std::copysign(kInfinity, value) : value; }

bool is_one_of(int attr, Attr first, Attr last) {
    return attr >= static_cast<int>(first) && attr <= static_cast<int>(last);
}

template <class T>
void append(std::vector<T>& to, std::vector<T>& from) {
    if (to.empty())
        to = std::move(from);
    else
        to.insert(to.end(), from.begin(), from.end());
}

template <class T>
void compact(std::vector<T>& values, const std::vector<char>& keep) {
    std::size_t next = 0;
    for (std::size_t i = 0; i < values.size(); ++i)
        if (keep[i]) values[next++] = values[i];
    values.resize(next);
}

std::vector<char> kept(int size, const std::vector<int>& deleted) {
    std::vector<char> keep(size, 1);
    for (int i : deleted) keep[i] = 0;
    return keep;
}

Option option_of(int attr) {
    switch (static_cast<Attr>(attr)) {
        case Attr::Start: return Option::kStart;
        case Attr::VarHintVal: return Option::kHintValue;
        case Attr::VarHintPri: return Option::kHintPriority;
        case Attr::BranchPriority: return Option::kBranchPriority;
        case Attr::Partition: return Option::kPartition;
        case Attr::VBasis: return Option::kColumnBasis;
        case Attr::PoolIgnore: return Option::kPoolIgnore;
        case Attr::IISLBForce: return Option::kIisLowerForce;
        case Attr::IISUBForce: return Option::kIisUpperForce;
        case Attr::PStart: return Option::kPrimalStart;
        case Attr::CBasis: return Option::kRowBasis;
        case Attr::IISConstrForce: return Option::kIisForce;
        case Attr::DStart: return Option::kDualStart;
        default: return Option::kLazy;
    }
}

// The number in a default name such as "C17"; -1 when `name` is none.
int default_index(std::string_view name, char letter) {
    int index = -1;
    if (name.size() < 2 || name[0] != letter || (name[1] == '0' && name.size() > 2)) return -1;
    const auto [end, fault] = std::from_chars(name.data() + 1, name.data() + name.size(), index);
    return fault == std::errc() && end == name.data() + name.size() ? index : -1;
}

void build_index(const Names& names, std::unordered_map<std::string_view, int>& index) {
    index.clear();
    if (!names.any()) return;
    index.reserve(names.size());
    for (int i = 0; i < names.size(); ++i)
        if (names.has(i)) index.emplace(names.get(i), i);  // the first of equal names wins
}

int find(const Names& names, std::string_view name, char letter, std::unordered_map<std::string_view, int>& index,
         bool& valid) {
    if (!valid) {
        build_index(names, index);
        valid = true;
    }
    if (const auto found = index.find(name); found != index.end()) return found->second;
    const int i = default_index(name, letter);
    return i >= 0 && i < names.size() && !names.has(i) ? i : -1;
}

}  // namespace

Model::Model(const Env& parent) : env(parent) { env.error.clear(); }

Model::~Model() = default;

void Model::discard_solution() { solution = Solution(); }

int Model::find_col(std::string_view name) { return find(data.cols.names, name, 'C', col_index_, col_index_valid_); }

int Model::find_row(std::string_view name) { return find(data.rows.names, name, 'R', row_index_, row_index_valid_); }

// Names, tags and hints for the solver leave a solution valid.
bool Model::changes_problem() const {
    if (queue.cols.size() || queue.rows.size() || !queue.entries.empty() || !queue.deleted_cols.empty() ||
        !queue.deleted_rows.empty())
        return true;
    return std::any_of(queue.writes.begin(), queue.writes.end(), [](const Write& write) {
        switch (write.attr) {
            case Write::kText:
                return false;
            case Write::kObjective:
            case Write::kPwl:
            case static_cast<int>(Attr::Sense):
            case static_cast<int>(Attr::RHS):
                return true;
            case static_cast<int>(Attr::NumStart):
                return false;
            default:
                return !is_one_of(write.attr, Attr::LB, Attr::CTag) || is_one_of(write.attr, Attr::LB, Attr::VType);
        }
    });
}

void Model::update() {
    if (queue.empty()) return;
    const bool changed = changes_problem();
    splice_columns();
    splice_rows();
    splice_helpers();
    apply_writes();
    if (!queue.deleted_cols.empty()) remove_deleted_cols();
    if (!queue.deleted_rows.empty()) remove_deleted_rows();
    queue = Queue();
    col_index_valid_ = row_index_valid_ = false;
    if (changed) discard_solution();
}

void Model::splice_columns() {
    Columns& cols = data.cols;
    Columns& added = queue.cols;
    if (added.size() == 0) return;
    append(cols.lb, added.lb);
    append(cols.ub, added.ub);
    append(cols.obj, added.obj);
    append(cols.type, added.type);
    cols.names.append(added.names);
    cols.tags.append(added.tags);
    cols.optional.resize(cols.size());
}

void Model::splice_rows() {
    Rows& rows = data.rows;
    Rows& added = queue.rows;
    if (added.size() > 0) {
        const std::int64_t shift = rows.num_entries();
        if (rows.size() == 0) {
            rows.start = std::move(added.start);
        } else {
            rows.start.reserve(rows.start.size() + added.rhs.size());
            for (int i = 1; i <= added.size(); ++i) rows.start.push_back(added.start[i] + shift);
        }
        const int before = rows.size(), total = before + added.size();
        append(rows.col, added.col);
        append(rows.val, added.val);
        append(rows.sense, added.sense);
        append(rows.lower, added.lower);
        append(rows.rhs, added.rhs);
        rows.names.append(added.names);
        rows.tags.append(added.tags);
        rows.optional.resize(total);
    }
}

// Entries of new columns and of helper columns go behind the entries of their rows.
void Model::splice_helpers() {
    Rows& rows = data.rows;
    for (const Queue::Helper& helper : queue.helpers) {
        const char* row_name = rows.names.get(helper.row);
        std::string name = row_name ? std::string("Rg") + row_name : std::string();
        if (name.size() > ZVN_MAX_NAMELEN) name.clear();
        queue.entries.push_back({helper.row, num_cols(), 1.0});
        data.cols.push_back(helper.lb, helper.ub, 0.0, 'C', name);
    }
    if (queue.entries.empty()) return;

    std::vector<std::int64_t> start(rows.start.size(), 0);
    for (const auto& entry : queue.entries) ++start[entry.row + 1];
    for (int i = 0; i < rows.size(); ++i) start[i + 1] += start[i] + rows.start[i + 1] - rows.start[i];
    std::vector<int> col(start.back());
    std::vector<double> val(start.back());
    std::vector<std::int64_t> next(start.begin(), start.end() - 1);
    for (int i = 0; i < rows.size(); ++i) {
        const std::int64_t length = rows.start[i + 1] - rows.start[i];
        std::copy_n(rows.col.begin() + rows.start[i], length, col.begin() + next[i]);
        std::copy_n(rows.val.begin() + rows.start[i], length, val.begin() + next[i]);
        next[i] += length;
    }
    for (const auto& entry : queue.entries) {
        const std::int64_t to = next[entry.row]++;
        col[to] = entry.col;
        val[to] = entry.val;
    }
    rows.start = std::move(start);
    rows.col = std::move(col);
    rows.val = std::move(val);
}

void Model::apply_writes() {
    for (const Write& write : queue.writes) {
        switch (write.attr) {
            case Write::kText:
                apply_text(queue.texts[write.index]);
                break;
            case Write::kObjective:
                apply_objective(queue.objectives[write.index]);
                break;
            case Write::kPwl: {
                PwlWrite& pwl = queue.pwl[write.index];
                if (pwl.points.empty()) {
                    data.pwl_obj.erase(pwl.col);
                } else {
                    data.cols.obj[pwl.col] = 0.0;
                    data.pwl_obj[pwl.col] = std::move(pwl.points);
                }
                break;
            }
            default:
                apply_number(write);
        }
    }
}

void Model::apply_number(const Write& write) {
    Columns& cols = data.cols;
    Rows& rows = data.rows;
    const int i = write.index;
    const auto objective = [&]() -> Objective& { return data.objectives[write.number]; };
    switch (static_cast<Attr>(write.attr)) {
        case Attr::LB:
            cols.lb[i] = clip(write.value);
            return;
        case Attr::UB:
            cols.ub[i] = clip(write.value);
            return;
        case Attr::Obj:
            cols.obj[i] = write.value;
            data.pwl_obj.erase(i);
            return;
        case Attr::VType:
            cols.type[i] = static_cast<char>(write.value);
            if (cols.type[i] == 'B') {
                cols.lb[i] = std::max(cols.lb[i], 0.0);
                cols.ub[i] = std::min(cols.ub[i], 1.0);
            }
            return;
        case Attr::Sense:
            rows.sense[i] = static_cast<char>(write.value);
            return;
        case Attr::RHS:
            rows.rhs[i] = clip(write.value);
            return;
        case Attr::ModelSense:
            data.sense = write.value < 0 ? -1 : 1;
            return;
        case Attr::ObjCon:
            data.obj_constant = write.value;
            return;
        case Attr::NumStart:
            if (write.value == 0)
                cols.optional.erase(Option::kStart);
            else if (cols.size() > 0)
                cols.optional.make(Option::kStart, cols.size());
            return;
        case Attr::NumObj: {
            data.objectives.resize(static_cast<std::size_t>(write.value));
            return;
        }
        case Attr::ObjN:
            if (write.number == 0) {
                cols.obj[i] = write.value;
                data.pwl_obj.erase(i);
            } else {
                std::vector<double> coeff = objective().coeff.dense(cols.size());
                coeff[i] = write.value;
                objective().coeff = SparseVector::of(coeff);
            }
            return;
        case Attr::ObjNCon:
            (write.number == 0 ? data.obj_constant : objective().constant) = write.value;
            return;
        case Attr::ObjNPriority:
            objective().priority = static_cast<int>(write.value);
            return;
        case Attr::ObjNWeight:
            objective().weight = write.value;
            return;
        case Attr::ObjNRelTol:
            objective().rel_tol = write.value;
            return;
        case Attr::ObjNAbsTol:
            objective().abs_tol = write.value;
            return;
        default:
            if (is_one_of(write.attr, Attr::LB, Attr::VTag))
                cols.optional.make(option_of(write.attr), cols.size())[i] = write.value;
            else
                rows.optional.make(option_of(write.attr), rows.size())[i] = write.value;
    }
}

void Model::apply_text(const TextWrite& write) {
    switch (static_cast<Attr>(write.attr)) {
        case Attr::VarName:
            return data.cols.names.set(write.index, write.value);
        case Attr::VTag:
            return data.cols.tags.set(write.index, write.value);
        case Attr::ConstrName:
            return data.rows.names.set(write.index, write.value);
        case Attr::CTag:
            return data.rows.tags.set(write.index, write.value);
        case Attr::ObjNName:
            data.objectives[write.number].name = write.value;
            return;
        default:
            data.name = write.value;
    }
}

void Model::apply_objective(const ObjectiveWrite& write) {
    if (write.sense != 0) data.sense = write.sense;
    const std::size_t number = std::max(write.number, 0);
    if (write.number >= 0 && data.objectives.size() <= number) data.objectives.resize(number + 1);
    if (write.number >= 0) {
        SparseVector old = std::move(data.objectives[number].coeff);
        data.objectives[number] = write.fields;
        data.objectives[number].coeff = std::move(old);
    }
    if (number == 0) {
        data.obj_constant = write.fields.constant;
        data.pwl_obj.erase(data.pwl_obj.begin(), data.pwl_obj.lower_bound(write.num_cols));
    }
    std::vector<double> dense;
    if (number > 0) dense = data.objectives[number].coeff.dense(num_cols());
    std::vector<double>& coeff = number == 0 ? data.cols.obj : dense;
    std::fill_n(coeff.begin(), write.num_cols, 0.0);
    for (std::size_t k = 0; k < write.col.size(); ++k) coeff[write.col[k]] += write.val[k];
    if (number > 0) data.objectives[number].coeff = SparseVector::of(dense);
}

void Model::remove_deleted_cols() {
    Columns& cols = data.cols;
    const std::vector<char> keep = kept(num_cols(), queue.deleted_cols);
    std::vector<int> renumbered(keep.size());
    int next = 0;
    for (std::size_t j = 0; j < keep.size(); ++j) renumbered[j] = keep[j] ? next++ : -1;

    compact(cols.lb, keep);
    compact(cols.ub, keep);
    compact(cols.obj, keep);
    compact(cols.type, keep);
    cols.names.compact(keep);
    cols.tags.compact(keep);
    cols.optional.for_each([&](auto& values) { compact(values, keep); });
    for (std::size_t k = 1; k < data.objectives.size(); ++k) {
        SparseVector left;
        const SparseVector& old = data.objectives[k].coeff;
        for (std::size_t e = 0; e < old.col.size(); ++e)
            if (keep[old.col[e]]) left.push_back(renumbered[old.col[e]], old.val[e]);
        data.objectives[k].coeff = std::move(left);
    }
    std::map<int, PwlPoints> pwl;
    for (auto& [col, points] : data.pwl_obj)
        if (keep[col]) pwl.emplace(renumbered[col], std::move(points));
    data.pwl_obj = std::move(pwl);

    Rows& rows = data.rows;
    std::int64_t to = 0, from = 0;
    for (int i = 0; i < rows.size(); ++i) {
        for (; from < rows.start[i + 1]; ++from) {
            const int col = renumbered[rows.col[from]];
            if (col < 0) continue;
            rows.col[to] = col;
            rows.val[to++] = rows.val[from];
        }
        rows.start[i + 1] = to;
    }
    rows.col.resize(to);
    rows.val.resize(to);
}

void Model::remove_deleted_rows() {
    Rows& rows = data.rows;
    const std::vector<char> keep = kept(num_rows(), queue.deleted_rows);
    std::int64_t to = 0;
    int next = 0;
    for (int i = 0; i < rows.size(); ++i) {
        if (!keep[i]) continue;
        const std::int64_t first = rows.start[i], length = rows.start[i + 1] - first;
        std::copy_n(rows.col.begin() + first, length, rows.col.begin() + to);
        std::copy_n(rows.val.begin() + first, length, rows.val.begin() + to);
        rows.start[next++] = to;  // not above i, so the starts still to be read stay
        to += length;
    }
    rows.start.resize(next + 1);
    rows.start[next] = to;
    rows.col.resize(to);
    rows.val.resize(to);
    compact(rows.sense, keep);
    compact(rows.rhs, keep);
    compact(rows.lower, keep);
    rows.names.compact(keep);
    rows.tags.compact(keep);
    rows.optional.for_each([&](auto& values) { compact(values, keep); });
}

}  // namespace zelvan
