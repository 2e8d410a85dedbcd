#include "tuplelist.h"

#include <algorithm>

#include "pyargs.h"
#include "pycontainer.h"
#include "pytype.h"

namespace zelvanpy {

PyTypeObject* TupleList_Type = nullptr;

namespace {

const Name kStar("*");
const Name kClean("clean");
const Name kExtend("extend");
const Name kPop("pop");
const Name kInsert("insert");
const Name kRemove("remove");

PyObject* base() { return reinterpret_cast<PyObject*>(&PyList_Type); }

// Settles the kind by the first of some new members and tests that all are of it.
void check_members(TupleList& list, PyObject* const* members, Py_ssize_t num) {
    if (num == 0) return;
    if (list.kind == TupleList::kUnknown)
        list.kind = PyTuple_CheckExact(members[0]) ? TupleList::kTuples : TupleList::kScalars;
    for (Py_ssize_t i = 0; i < num; ++i)
        if (PyTuple_CheckExact(members[i]) == list.scalar())
            raise(PyExc_ValueError, "Cannot mix scalar and tuple values in a tuplelist");
    if (list.scalar()) return;
    if (list.kind == TupleList::kTuples) list.kind = PyTuple_GET_SIZE(members[0]) + 1;
    for (Py_ssize_t i = 0; i < num; ++i)
        if (PyTuple_GET_SIZE(members[i]) + 1 != list.kind)
            raise(PyExc_ValueError, "All tuples in a tuplelist must be the same length");
}

void clean(TupleList& self) {
    if (overrides(self.self(), TupleList_Type, kClean))
        steal(PyObject_CallMethodObjArgs(self.self().ptr(), kClean.get(), nullptr));
    else
        tuplelist_clean(self);
}

// After members left: an empty list takes either kind again.
void settle(TupleList& self) {
    if (self.size() == 0) self.kind = TupleList::kUnknown;
    clean(self);
}

// Construction and life

void TupleList_init(TupleList& self, PyObject* args, PyObject* kwargs) {
    static const Signature<2> kInit{"tuplelist", 0, {Name("data"), Name("wild")}};
    const auto [data, wild] = kInit.parse(args, kwargs);
    PyObject* list = self.self().ptr();
    if (checked(PyList_SetSlice(list, 0, self.size(), nullptr))) throw PythonError{};
    Py_XINCREF(wild);
    Py_XSETREF(self.wild, wild);
    self.kind = TupleList::kUnknown;
    tuplelist_clean(self);
    const py::object members = data ? borrow(data) : steal(PyList_New(0));
    if (overrides(self.self(), TupleList_Type, kExtend))
        steal(PyObject_CallMethodObjArgs(list, kExtend.get(), members.ptr(), nullptr));
    else
        tuplelist_extend(self, members);
}

void TupleList_dealloc(PyObject* object) {
    auto* self = reinterpret_cast<TupleList*>(object);
    dealloc_container(object, TupleList_Type, &PyList_Type, TupleList_dealloc, [self] {
        if (self->weakrefs) PyObject_ClearWeakRefs(self->self().ptr());
        tuplelist_clean(*self);
        Py_CLEAR(self->wild);
        Py_CLEAR(self->dict);
    });
}

int TupleList_traverse(PyObject* object, visitproc visit, void* arg) {
    const auto* self = reinterpret_cast<TupleList*>(object);
    Py_VISIT(self->wild);
    Py_VISIT(self->dict);
    if (const Derived* derived = self->derived) {
        for (const auto& members : derived->members)
            for (const py::object& member : *members) Py_VISIT(member.ptr());
        for (const auto& index : derived->indices)
            if (const int stop = index->traverse(visit, arg)) return stop;
        Py_VISIT(derived->contents.ptr());
        for (const py::object& neighbours : derived->neighbours) Py_VISIT(neighbours.ptr());
    }
    if (const int stop = PyList_Type.tp_traverse(object, visit, arg)) return stop;
    return visit_type(object, visit, arg);
}

int TupleList_clear(PyObject* object) {
    auto* self = reinterpret_cast<TupleList*>(object);
    tuplelist_clean(*self);
    Py_CLEAR(self->wild);
    Py_CLEAR(self->dict);
    return PyList_Type.tp_clear(object);
}

py::object TupleList_getstate(TupleList& self) {
    return py::make_tuple(tuplelist_wild(self), self.dict ? borrow(self.dict) : none());
}

// Copying sets the state before the members come, unpickling after; members that came by list's own constructor
// have told no kind yet.
void TupleList_setstate(TupleList& self, py::handle state) {
    restore_state(self.self(), state, self.wild);
    if (self.kind == TupleList::kUnknown) check_members(self, self.list.ob_item, std::min<Py_ssize_t>(self.size(), 1));
}

// Text

py::list field_texts(py::handle members, Py_ssize_t field, std::size_t& width) {
    py::list texts;
    width = 0;
    for (const py::handle member : members) {
        const py::object value = steal(PySequence_GetItem(member.ptr(), field));
        texts.append(steal(PyObject_Str(value.ptr())));
        width = std::max<std::size_t>(width, PyUnicode_GET_LENGTH(texts[texts.size() - 1].ptr()));
    }
    return texts;
}

// False after an assignment that brought in something else, too.
bool are_tuples_of(py::handle members, Py_ssize_t length) {
    return std::all_of(PySequence_Fast_ITEMS(members.ptr()),
                       PySequence_Fast_ITEMS(members.ptr()) + PySequence_Fast_GET_SIZE(members.ptr()),
                       [=](PyObject* member) { return PyTuple_Check(member) && PyTuple_GET_SIZE(member) == length; });
}

py::object TupleList_repr(TupleList& self) {
    const py::object members = steal(PySequence_List(self.self().ptr()));
    const auto size = py::len(members);
    if (size == 0 || !are_tuples_of(members, self.kind - 1)) return steal(PyObject_Repr(members.ptr()));
    py::list lines;
    lines.append(steal(PyUnicode_FromFormat("<zelvan.tuplelist (%zd tuples, %zd values each):\n",
                                            static_cast<Py_ssize_t>(size), self.kind - 1)));
    py::list columns;
    for (Py_ssize_t field = 0; field < self.kind - 1; ++field) {
        std::size_t width;
        const py::list texts = field_texts(members, field, width);
        for (std::size_t i = 0; i < texts.size(); ++i) texts[i] = texts[i].attr("ljust")(width);
        columns.append(texts);
    }
    const py::str comma(", ");
    for (std::size_t i = 0; i < size; ++i) {
        py::list fields;
        for (const py::handle column : columns) fields.append(column[py::int_(i)]);
        lines.append(steal(PyUnicode_FromFormat(" ( %U)\n", comma.attr("join")(fields).ptr())));
    }
    lines.append(py::str(">"));
    return py::str("").attr("join")(lines);
}

// Members

int TupleList_contains(TupleList& self, py::handle member) {
    Derived& derived = derived_of(self);
    py::object contents = derived.contents;
    if (!contents) {
        contents = steal(PySet_New(self.self().ptr()));
        derived_of(self).contents = contents;
    }
    return checked(PySet_Contains(contents.ptr(), member.ptr()));
}

void TupleList_append(TupleList& self, py::handle member) {
    PyObject* added = member.ptr();
    check_members(self, &added, 1);
    clean(self);
    checked(PyList_Append(self.self().ptr(), added));
}

void TupleList_extend(TupleList& self, py::handle members) { tuplelist_extend(self, members); }

void TupleList_insert(TupleList& self, Args args) {
    static const Signature<2> kSignature{"insert", 2, {Name("i"), Name("x")}};
    const auto [position, member] = kSignature.parse(args);
    check_members(self, &member, 1);
    clean(self);
    steal(PyObject_CallMethodObjArgs(base(), kInsert.get(), self.self().ptr(), position, member, nullptr));
}

py::object TupleList_pop(TupleList& self, Args args) {
    static const Signature<1> kSignature{"pop", 0, {Name("i")}};
    const auto [position] = kSignature.parse(args);
    py::object member = steal(PyObject_CallMethodObjArgs(base(), kPop.get(), self.self().ptr(), position, nullptr));
    settle(self);
    return member;
}

void TupleList_remove(TupleList& self, py::handle member) {
    steal(PyObject_CallMethodObjArgs(base(), kRemove.get(), self.self().ptr(), member.ptr(), nullptr));
    settle(self);
}

// Assignments go through as they are, deletions of items and slices drop what was built.
void TupleList_ass_subscript(TupleList& self, py::handle key, PyObject* value) {
    checked(PyList_Type.tp_as_mapping->mp_ass_subscript(self.self().ptr(), key.ptr(), value));
    if (!value) settle(self);
}

void TupleList_ass_item(TupleList& self, Py_ssize_t position, PyObject* value) {
    checked(PyList_Type.tp_as_sequence->sq_ass_item(self.self().ptr(), position, value));
    if (!value) settle(self);
}

py::object TupleList_add(py::handle left, py::handle right) {
    if (!is_tuplelist(left)) return borrow(Py_NotImplemented);
    const py::object plain = steal(PySequence_List(left.ptr()));
    const py::object both = steal(PySequence_Concat(plain.ptr(), right.ptr()));
    py::object result = new_tuplelist(steal(PyList_New(0)), borrow(as_tuplelist(left).wild));
    tuplelist_extend(as_tuplelist(result), both);
    return result;
}

py::object TupleList_iadd(py::handle self, py::handle other) {
    if (overrides(self, TupleList_Type, kExtend))
        steal(PyObject_CallMethodObjArgs(self.ptr(), kExtend.get(), other.ptr(), nullptr));
    else
        tuplelist_extend(as_tuplelist(self), other);
    return borrow(self);
}

py::object TupleList_getslice(TupleList& self, Args args) {
    static const Signature<2> kSignature{"__getslice__", 2, {Name("b"), Name("c")}};
    const auto [begin, end] = kSignature.parse(args);
    const py::object slice = steal(PyObject_CallMethod(base(), "__getslice__", "OOO", self.self().ptr(), begin, end));
    return new_tuplelist(steal(PySequence_List(slice.ptr())), borrow(self.wild));
}

void TupleList_delslice(TupleList& self, Args args) {
    static const Signature<2> kSignature{"__delslice__", 2, {Name("i"), Name("j")}};
    const auto [begin, end] = kSignature.parse(args);
    steal(PyObject_CallMethod(base(), "__delslice__", "OOO", self.self().ptr(), begin, end));
    settle(self);
}

// Selection and neighbours

py::object TupleList_select(TupleList& self, Args args) {
    refuse_keywords("select", args);
    return selected_list(select(self, args.values, static_cast<std::size_t>(args.count)));
}

void TupleList_clean(TupleList& self) { tuplelist_clean(self); }

// How each of prev, next, prevc, nextc pairs members: which positions are keys, how far away the value is.
struct Neighbours {
    const char* method;
    Py_ssize_t first_key, num_missing, step;
};
constexpr Neighbours kNeighbours[] = {{"prev", 1, 1, -1}, {"next", 0, 1, 1}, {"prevc", 0, 0, -1}, {"nextc", 0, 0, 1}};

py::object neighbour_map(TupleList& self, const Neighbours& which) {
    const py::object members = steal(PySequence_Tuple(self.self().ptr()));
    const Py_ssize_t size = PyTuple_GET_SIZE(members.ptr());
    py::object map = steal(PyDict_New());
    for (Py_ssize_t i = which.first_key; i < size - (which.step > 0 ? which.num_missing : 0); ++i) {
        PyObject* value = PyTuple_GET_ITEM(members.ptr(), (i + which.step + size) % size);
        checked(PyDict_SetItem(map.ptr(), PyTuple_GET_ITEM(members.ptr(), i), value));
    }
    if (PyDict_Size(map.ptr()) != size - which.num_missing) raise(PyExc_KeyError, "Duplicate values in tupledict");
    return map;
}

template <int kWhich>
py::object TupleList_neighbour(TupleList& self, Args args) {
    static const Signature<1> kSignature{kNeighbours[kWhich].method, 1, {Name("v")}};
    const auto [member] = kSignature.parse(args);
    py::object map = derived_of(self).neighbours[kWhich];
    if (!map || PyDict_Size(map.ptr()) == 0) {
        map = neighbour_map(self, kNeighbours[kWhich]);
        derived_of(self).neighbours[kWhich] = map;
    }
    return steal(PyObject_GetItem(map.ptr(), member));
}

PyMethodDef methods[] = {
    {"select", method<TupleList_select>, kKeywords,
     "select($self, /, *vals)\n--\n\n"
     "The members that match one value for each leading field.\n\n"
     "The wildcard (\"*\" unless set otherwise) matches any value, and so does a field without a value. A list or any\n"
     "other iterable except a str gives alternatives, whose matches come one after the other. The result is a\n"
     "tuplelist in the order of this list: the list itself if nothing constrains, and an object shared by later\n"
     "calls if one combination of values does. Raises TypeError for an unhashable value.\n\n"
     "    arcs = tuplelist([(1, 2), (1, 3), (2, 3)])\n"
     "    arcs.select(\"*\", 3)      # (1, 3), (2, 3)"},
    {"clean", method<TupleList_clean>, METH_NOARGS,
     "clean($self, /)\n--\n\n"
     "Drop all indices that selections, membership tests and neighbour queries have built.\n\n"
     "They are built again on demand. Needed after an assignment to an item, a sort or another change that list\n"
     "itself makes, which leaves them as they are."},
    {"prev", method<TupleList_neighbour<0>>, kKeywords,
     "prev($self, /, v)\n--\n\n"
     "The member before `v`. Raises KeyError if `v` is the first or no member, or if a member occurs twice."},
    {"next", method<TupleList_neighbour<1>>, kKeywords,
     "next($self, /, v)\n--\n\n"
     "The member after `v`. Raises KeyError if `v` is the last or no member, or if a member occurs twice."},
    {"prevc", method<TupleList_neighbour<2>>, kKeywords,
     "prevc($self, /, v)\n--\n\n"
     "The member before `v`, the last one before the first. Raises KeyError if `v` is no member or one occurs twice."},
    {"nextc", method<TupleList_neighbour<3>>, kKeywords,
     "nextc($self, /, v)\n--\n\n"
     "The member after `v`, the first one after the last. Raises KeyError if `v` is no member or one occurs twice."},
    {"append", method<TupleList_append>, METH_O,
     "append($self, x, /)\n--\n\n"
     "Add a member at the end. Raises ValueError if it is not of the kind and length of the others."},
    {"extend", method<TupleList_extend>, METH_O,
     "extend($self, L, /)\n--\n\n"
     "Add all members of an iterable at the end, or none and raise ValueError if they don't all fit."},
    {"insert", method<TupleList_insert>, kKeywords,
     "insert($self, /, i, x)\n--\n\n"
     "Add a member before position `i` (int). Raises ValueError if it is not of the kind and length of the others."},
    {"pop", method<TupleList_pop>, kKeywords,
     "pop($self, /, i=-1)\n--\n\n"
     "Remove and return the member at position `i` (int). Raises IndexError if there is none."},
    {"remove", method<TupleList_remove>, METH_O,
     "remove($self, x, /)\n--\n\n"
     "Remove the first member equal to `x`. Raises ValueError if there is none."},
    {"__getslice__", method<TupleList_getslice>, kKeywords,
     "__getslice__($self, /, b, c)\n--\n\n"
     "The members of a slice as a tuplelist. Raises AttributeError where list has no method of this name."},
    {"__delslice__", method<TupleList_delslice>, kKeywords,
     "__delslice__($self, /, i, j)\n--\n\n"
     "Remove the members of a slice. Raises AttributeError where list has no method of this name."},
    {"__getstate__", method<TupleList_getstate>, METH_NOARGS,
     "__getstate__($self, /)\n--\n\n"
     "State for pickle and copy beside the members: the wildcard and the instance dictionary or None."},
    {"__setstate__", method<TupleList_setstate>, METH_O,
     "__setstate__($self, state, /)\n--\n\n"
     "Take over what __getstate__ gave. Raises TypeError for anything else."},
    {}};

PyGetSetDef properties[] = {dict_property("Attributes that a user has set."), {}};

PyMemberDef members[] = {dict_at(offsetof(TupleList, dict)), weakrefs_at(offsetof(TupleList, weakrefs)), {}};

const char kDoc[] =
    "tuplelist(data=[], wild=\"*\")\n--\n\n"
    "A list of tuples of one length, or of scalars, with selection by patterns.\n\n"
    "`data` is an iterable of the first members, `wild` the value that stands for any value in a pattern. The first\n"
    "member settles whether tuples (and of which length) or scalars are taken; an emptied list takes either again.\n"
    "Raises ValueError for members of different kinds or lengths.\n\n"
    "    l = tuplelist([(1, \"a\"), (1, \"b\"), (2, \"a\")])\n"
    "    l.select(1)               # (1, \"a\"), (1, \"b\")";

PyType_Slot slots[] = {{Py_tp_doc, const_cast<char*>(kDoc)},
                       {Py_tp_init, slot<TupleList_init>()},
                       {Py_tp_dealloc, reinterpret_cast<void*>(TupleList_dealloc)},
                       {Py_tp_traverse, reinterpret_cast<void*>(TupleList_traverse)},
                       {Py_tp_clear, reinterpret_cast<void*>(TupleList_clear)},
                       {Py_tp_repr, slot<TupleList_repr>()},
                       {Py_sq_contains, slot<TupleList_contains>()},
                       {Py_sq_ass_item, slot<TupleList_ass_item>()},
                       {Py_mp_ass_subscript, slot<TupleList_ass_subscript>()},
                       {Py_sq_concat, slot<TupleList_add>()},
                       {Py_sq_inplace_concat, slot<TupleList_iadd>()},
                       {Py_nb_add, slot<TupleList_add>()},
                       {Py_nb_inplace_add, slot<TupleList_iadd>()},
                       {Py_tp_methods, methods},
                       {Py_tp_getset, properties},
                       {Py_tp_members, members},
                       {0, nullptr}};

PyType_Spec spec = {"zelvanpy.tuplelist", sizeof(TupleList), 0,
                    Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC, slots};

}  // namespace

py::object tuplelist_wild(const TupleList& list) { return borrow(list.wild ? list.wild : kStar.get()); }

Derived& derived_of(TupleList& list) {
    if (!list.derived) list.derived = new Derived;
    return *list.derived;
}

void tuplelist_clean(TupleList& list) { delete std::exchange(list.derived, nullptr); }

py::object new_tuplelist(py::object plain, py::object wild) {
    py::object result = steal(TupleList_Type->tp_alloc(TupleList_Type, 0));
    TupleList& list = as_tuplelist(result);
    list.wild = wild.release().ptr();
    check_members(list, reinterpret_cast<PyListObject*>(plain.ptr())->ob_item, PyList_GET_SIZE(plain.ptr()));
    swap_lists(result.ptr(), plain.ptr());
    return result;
}

void tuplelist_extend(TupleList& list, py::handle members) {
    const py::object plain = steal(PySequence_List(members.ptr()));
    check_members(list, reinterpret_cast<PyListObject*>(plain.ptr())->ob_item, PyList_GET_SIZE(plain.ptr()));
    clean(list);
    PyObject* self = list.self().ptr();
    if (list.size() == 0)
        swap_lists(self, plain.ptr());
    else
        checked(PyList_SetSlice(self, list.size(), list.size(), plain.ptr()));
}

void init_tuplelist(py::module_& module) {
    TupleList_Type = make_type(module, spec, reinterpret_cast<PyObject*>(&PyList_Type));
}

}  // namespace zelvanpy
