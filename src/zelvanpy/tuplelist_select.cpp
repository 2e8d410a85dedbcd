// tuplelist.select: patterns to positions that constrain, alternatives, indices made on demand.

#include <algorithm>

#include "pattern.h"
#include "pycontainer.h"
#include "pyiter.h"
#include "tuplelist.h"

namespace zelvanpy {

namespace {

const Name kSelect("select");

using Pattern = std::vector<std::size_t>;

void match(TupleList& list, const std::vector<PyObject*>& vals, Selection& selection);

// Whether the value is a collection in the eyes of iter(); saves raising and catching in the usual cases.
bool may_iterate(PyObject* value) {
    if (PyUnicode_CheckExact(value)) return false;
    return Py_TYPE(value)->tp_iter || PySequence_Check(value);
}

// Failures that make a collection stand for itself.
bool is_swallowed() { return PyErr_ExceptionMatches(PyExc_TypeError) || PyErr_ExceptionMatches(PyExc_IndexError); }

void select_alternative(TupleList& list, std::vector<PyObject*>& vals, Selection& selection) {
    if (!overrides(list.self(), TupleList_Type, kSelect)) return match(list, vals, selection);
    const py::object method = steal(PyObject_GetAttr(list.self().ptr(), kSelect.get()));
    const py::tuple arguments(vals.size());
    for (std::size_t i = 0; i < vals.size(); ++i) arguments[i] = borrow(vals[i]);
    const py::object found = steal(PyObject_CallObject(method.ptr(), arguments.ptr()));
    selection.parts.push_back({nullptr, 0, steal(PySequence_List(found.ptr()))});
}

void add_alternatives(TupleList& list, std::vector<PyObject*>& vals, std::size_t k, py::handle iterator,
                      Selection& selection) {
    const NestingLevel level(" while selecting by nested alternatives");
    PyObject* const whole = vals[k];
    for_each_next(iterator, [&](const py::object& alternative) {
        vals[k] = alternative.ptr();
        select_alternative(list, vals, selection);
        vals[k] = whole;
    });
}

// Takes vals[k] for a collection of alternatives; false, with nothing selected, where it is none.
bool expand(TupleList& list, const std::vector<PyObject*>& vals, std::size_t k, Selection& selection) {
    const std::size_t parts = selection.parts.size();
    const bool was_expanded = selection.expanded;
    const auto iterator = py::reinterpret_steal<py::object>(PyObject_GetIter(vals[k]));
    try {
        if (!iterator) throw PythonError{};
        std::vector<PyObject*> expanded = vals;
        add_alternatives(list, expanded, k, iterator, selection);
        selection.expanded = true;
        return true;
    } catch (...) {
        translate_exception();
        if (!is_swallowed()) throw PythonError{};
        PyErr_Clear();
        selection.parts.erase(selection.parts.begin() + parts, selection.parts.end());
        selection.expanded = was_expanded;
        return false;
    }
}

// Positions of the values that differ from the wildcard.
Pattern pattern_of(const TupleList& list, const std::vector<PyObject*>& vals) {
    const py::object wild = tuplelist_wild(list);
    Pattern pattern;
    for (std::size_t i = 0; i < vals.size(); ++i) {
        if (PyLong_CheckExact(vals[i]) && PyUnicode_CheckExact(wild.ptr())) {
            pattern.push_back(i);
            continue;
        }
        const py::object differs = steal(PyObject_RichCompare(vals[i], wild.ptr(), Py_NE));
        if (checked(PyObject_IsTrue(differs.ptr()))) pattern.push_back(i);
    }
    return pattern;
}

// The members as they stand, shared with an earlier index where the list is still the same.
std::shared_ptr<Members> members_of(TupleList& list) {
    const auto size = static_cast<std::size_t>(list.size());
    if (list.derived && !list.derived->members.empty()) {
        const std::shared_ptr<Members>& latest = list.derived->members.back();
        const auto is_same = [](const py::object& member, PyObject* now) { return member.ptr() == now; };
        if (latest->size() == size && std::equal(latest->begin(), latest->end(), list.list.ob_item, is_same))
            return latest;
    }
    auto members = std::make_shared<Members>();
    members->reserve(size);
    for (std::size_t i = 0; i < size; ++i) members->push_back(borrow(list.list.ob_item[i]));
    return members;
}

std::shared_ptr<KeyIndex> index_of(TupleList& list, Pattern pattern) {
    if (list.derived)
        for (const std::shared_ptr<KeyIndex>& index : list.derived->indices)
            if (index->pattern() == pattern) return index;
    const std::shared_ptr<Members> members = members_of(list);
    auto index = std::make_shared<KeyIndex>(std::move(pattern), list.scalar(), members);
    Derived& derived = derived_of(list);  // not before: hashing may have run code that dropped everything
    derived.indices.push_back(index);
    if (std::find(derived.members.begin(), derived.members.end(), members) == derived.members.end())
        derived.members.push_back(members);
    return index;
}

void match(TupleList& list, const std::vector<PyObject*>& vals, Selection& selection) {
    for (std::size_t k = 0; k < vals.size(); ++k)
        if (may_iterate(vals[k]) && expand(list, vals, k, selection)) return;
    Pattern pattern = pattern_of(list, vals);
    if (pattern.empty()) {
        selection.parts.push_back({nullptr, 0, borrow(list.self())});
        return;
    }
    std::shared_ptr<KeyIndex> index = index_of(list, std::move(pattern));
    const std::uint32_t group = index->find(list.scalar(), vals.data());
    if (group != KeyIndex::kNone) selection.parts.push_back({std::move(index), group, {}});
}

}  // namespace

py::object group_list(KeyIndex& index, std::uint32_t group) {
    return index.list_of(group, [](py::object plain) { return new_tuplelist(std::move(plain)); });
}

std::size_t Selection::size() const {
    std::size_t size = 0;
    for (const Part& part : parts)
        size +=
            part.list ? PyList_GET_SIZE(part.list.ptr()) : part.index->end(part.group) - part.index->begin(part.group);
    return size;
}

Selection select(TupleList& list, PyObject* const* vals, std::size_t num) {
    Selection selection;
    match(list, std::vector<PyObject*>(vals, vals + num), selection);
    return selection;
}

py::object selected_list(const Selection& selection) {
    const auto list_of = [](const Selection::Part& part) {
        return part.list ? part.list : group_list(*part.index, part.group);
    };
    if (!selection.expanded && !selection.parts.empty()) return list_of(selection.parts.front());
    py::object result = new_tuplelist(steal(PyList_New(0)));
    for (const Selection::Part& part : selection.parts) tuplelist_extend(as_tuplelist(result), list_of(part));
    return result;
}

}  // namespace zelvanpy
