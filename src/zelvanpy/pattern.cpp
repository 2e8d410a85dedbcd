#include "pattern.h"

namespace zelvanpy {

namespace {

constexpr int kFirstBits = 4;  // log2 of the number of slots of a new index

// x[position] of a member that is no tuple; it came into a list of tuples on a road without checks.
py::object field_of(PyObject* member, std::size_t position) {
    PyObject* field = PyObject_GetItem(member, py::int_(position).ptr());
    if (!field && !PyErr_ExceptionMatches(PyExc_IndexError)) throw PythonError{};
    PyErr_Clear();
    return py::reinterpret_steal<py::object>(field);
}

}  // namespace

KeyIndex::KeyIndex(std::vector<std::size_t> pattern, bool scalar, std::shared_ptr<Members> members)
    : pattern_(std::move(pattern)),
      width_(scalar ? 1 : pattern_.size()),
      members_(std::move(members)),
      slots_(std::size_t{1} << kFirstBits),
      shift_(64 - kFirstBits) {
    const std::size_t size = members_->size();
    if (size >= kNone) raise(PyExc_OverflowError, "Too many members for a selection");
    std::vector<std::uint32_t> group_of_member(size);
    for (std::size_t i = 0; i < size; ++i) group_of_member[i] = add_member((*members_)[i].ptr(), scalar);
    sort(group_of_member);
}

std::size_t KeyIndex::hash(PyObject* const* fields) const {
    std::uint64_t hash = 0;
    for (std::size_t i = 0; i < width_; ++i) {
        hash = (hash ^ static_cast<std::uint64_t>(checked(PyObject_Hash(fields[i])))) * 0x9E3779B97F4A7C15u;
        hash ^= hash >> 32;
    }
    return hash * 0x9E3779B97F4A7C15u;
}

bool KeyIndex::equal(std::uint32_t group, PyObject* const* fields) const {
    for (std::size_t i = 0; i < width_; ++i) {
        PyObject* own = fields_[group * width_ + i].ptr();
        if (own == fields[i]) continue;
        if (!checked(PyObject_RichCompareBool(own, fields[i], Py_EQ))) return false;
    }
    return true;
}

std::uint32_t KeyIndex::group_of(PyObject* const* fields, std::size_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t slot = hash >> shift_; slots_[slot]; slot = (slot + 1) & mask) {
        const std::uint32_t group = slots_[slot] - 1;
        if (hashes_[group] == hash && equal(group, fields)) return group;
    }
    return kNone;
}

void KeyIndex::grow() {
    std::vector<std::uint32_t> slots(2 * slots_.size());
    --shift_;
    const std::size_t mask = slots.size() - 1;
    for (std::size_t group = 0; group < hashes_.size(); ++group) {
        std::size_t slot = hashes_[group] >> shift_;
        while (slots[slot]) slot = (slot + 1) & mask;
        slots[slot] = static_cast<std::uint32_t>(group) + 1;
    }
    slots_.swap(slots);
}

std::uint32_t KeyIndex::add(PyObject* const* fields) {
    const std::size_t code = hash(fields);
    const std::uint32_t known = group_of(fields, code);
    if (known != kNone) return known;
    if (2 * (hashes_.size() + 1) > slots_.size()) grow();
    const auto group = static_cast<std::uint32_t>(hashes_.size());
    hashes_.push_back(code);
    for (std::size_t i = 0; i < width_; ++i) fields_.push_back(borrow(fields[i]));
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = code >> shift_;
    while (slots_[slot]) slot = (slot + 1) & mask;
    slots_[slot] = group + 1;
    return group;
}

std::uint32_t KeyIndex::add_member(PyObject* member, bool scalar) {
    if (scalar) return add(&member);
    if (width_ == 1 && PyTuple_CheckExact(member)) {
        const auto position = static_cast<Py_ssize_t>(pattern_[0]);
        return position < PyTuple_GET_SIZE(member) ? add(&PyTuple_GET_ITEM(member, position)) : kNone;
    }
    std::vector<py::object> fields(width_);
    for (std::size_t i = 0; i < width_; ++i) {
        const auto position = static_cast<Py_ssize_t>(pattern_[i]);
        if (!PyTuple_CheckExact(member))
            fields[i] = field_of(member, pattern_[i]);
        else if (position < PyTuple_GET_SIZE(member))
            fields[i] = borrow(PyTuple_GET_ITEM(member, position));
        if (!fields[i]) return kNone;
    }
    static_assert(sizeof(py::object) == sizeof(PyObject*));
    return add(reinterpret_cast<PyObject* const*>(fields.data()));
}

// A counting sort by group, which keeps the order of the list within each.
void KeyIndex::sort(const std::vector<std::uint32_t>& group_of_member) {
    starts_.assign(hashes_.size() + 2, 0);
    for (const std::uint32_t group : group_of_member)
        if (group != kNone) ++starts_[group + 2];
    for (std::size_t i = 2; i < starts_.size(); ++i) starts_[i] += starts_[i - 1];
    order_.resize(starts_.back());
    for (std::size_t i = 0; i < group_of_member.size(); ++i)
        if (group_of_member[i] != kNone) order_[starts_[group_of_member[i] + 1]++] = static_cast<std::uint32_t>(i);
    starts_.pop_back();
}

std::uint32_t KeyIndex::find(bool scalar, PyObject* const* vals) const {
    if (scalar) return width_ == 1 ? group_of(vals, hash(vals)) : kNone;
    if (pattern_.size() == 1) return group_of(vals + pattern_[0], hash(vals + pattern_[0]));
    std::vector<PyObject*> fields;
    for (const std::size_t position : pattern_) fields.push_back(vals[position]);
    return fields.size() == width_ ? group_of(fields.data(), hash(fields.data())) : kNone;
}

py::object KeyIndex::list_of(std::uint32_t group, py::object (*make)(py::object plain)) {
    if (lists_.empty()) lists_.resize(hashes_.size());
    if (!lists_[group]) {
        py::object plain = steal(PyList_New(end(group) - begin(group)));
        Py_ssize_t i = 0;
        for (const std::uint32_t* p = begin(group); p != end(group); ++p)
            PyList_SET_ITEM(plain.ptr(), i++, borrow((*members_)[*p]).release().ptr());
        lists_[group] = make(std::move(plain));
    }
    return lists_[group];
}

bool KeyIndex::is_intact(std::uint32_t group) const {
    if (lists_.empty() || !lists_[group]) return true;
    PyObject* list = lists_[group].ptr();
    if (PyList_GET_SIZE(list) != end(group) - begin(group)) return false;
    for (const std::uint32_t* p = begin(group); p != end(group); ++p)
        if (PyList_GET_ITEM(list, p - begin(group)) != (*members_)[*p].ptr()) return false;
    return true;
}

int KeyIndex::traverse(visitproc visit, void* arg) const {
    for (const py::object& field : fields_) Py_VISIT(field.ptr());
    for (const py::object& list : lists_) Py_VISIT(list.ptr());
    return 0;
}

}  // namespace zelvanpy
