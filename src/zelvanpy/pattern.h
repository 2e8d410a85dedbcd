#pragma once
// Selection of members by patterns: indices over a list of tuples or scalars, one for each combination of fields.

#include <cstdint>
#include <memory>
#include <vector>

#include "pybase.h"

namespace zelvanpy {

// The members of a list as they were when an index was built.
using Members = std::vector<py::object>;

// Groups the members by the values of some of their fields, or by themselves, in the order of the list.
class KeyIndex {
public:
    // `pattern` lists the positions that constrain. With `scalar` the members are keys as a whole.
    KeyIndex(std::vector<std::size_t> pattern, bool scalar, std::shared_ptr<Members> members);

    static constexpr std::uint32_t kNone = UINT32_MAX;

    const std::vector<std::size_t>& pattern() const { return pattern_; }
    const Members& members() const { return *members_; }
    // The group that a pattern asks for, or kNone. TypeError where a value is unhashable.
    std::uint32_t find(bool scalar, PyObject* const* vals) const;
    // The positions of all members that have a key, group by group, and those of one group.
    const std::vector<std::uint32_t>& order() const { return order_; }
    const std::uint32_t* begin(std::uint32_t group) const { return order_.data() + starts_[group]; }
    const std::uint32_t* end(std::uint32_t group) const { return order_.data() + starts_[group + 1]; }
    // The list of a group, made from a plain list when first asked for; the same object from then on.
    py::object list_of(std::uint32_t group, py::object (*make)(py::object plain));
    // Whether a list that was given out still holds the group.
    bool is_intact(std::uint32_t group) const;

    // What a tupledict holds under the members, parallel to order(): null for nothing, borrowed from the dict, to be
    // read while that has this version.
    struct Values {
        std::vector<PyObject*> list;
        std::uint64_t version = 0;
    } values;

    int traverse(visitproc visit, void* arg) const;

private:
    std::uint32_t group_of(PyObject* const* fields, std::size_t hash) const;
    std::uint32_t add(PyObject* const* fields);
    std::uint32_t add_member(PyObject* member, bool scalar);
    void grow();
    std::size_t hash(PyObject* const* fields) const;
    bool equal(std::uint32_t group, PyObject* const* fields) const;
    void sort(const std::vector<std::uint32_t>& group_of_member);

    std::vector<std::size_t> pattern_;
    std::size_t width_;  // number of fields that make a key
    std::shared_ptr<Members> members_;
    std::vector<py::object> fields_;    // of each group, one after the other
    std::vector<std::size_t> hashes_;   // of each group
    std::vector<std::uint32_t> slots_;  // open addressing: group + 1, or 0
    int shift_;                         // hash >> shift_ is the slot
    std::vector<std::uint32_t> starts_, order_;
    std::vector<py::object> lists_;  // empty until the first is asked for
};

}  // namespace zelvanpy
