#include "model_lists.h"

#include <algorithm>
#include <climits>
#include <iterator>
#include <utility>
#include <vector>

#include "exception.h"
#include "mconstr.h"
#include "model_stranger.h"
#include "mvar.h"
#include "pyargs.h"
#include "pycontainer.h"

namespace zelvanpy {

const ListRow list_rows[5] = {
    {Kind::kVar, &Model::vars, ZVNdelvars, &Model::live_vars, &Model::deleted_vars,
     "Tried to remove a variable that does not exist"},
    {Kind::kConstr, &Model::constrs, ZVNdelconstrs, &Model::live_constrs, &Model::deleted_constrs,
     "Tried to remove a constraint that does not exist"},
    {Kind::kSos, &Model::sos, ZVNdelsos, nullptr, nullptr, "Tried to remove an SOS that does not exist"},
    {Kind::kQConstr, &Model::qconstrs, ZVNdelqconstrs, nullptr, nullptr,
     "Tried to remove a quadratic constraint that does not exist"},
    {Kind::kGenConstr, &Model::genconstrs, ZVNdelgenconstrs, nullptr, nullptr,
     "Tried to remove a general constraint that does not exist"},
};

int count_of(Model& model, const char* attribute) {
    int count = 0;
    check(ZVNgetintattr(model_pointer(model), attribute, &count), as_object(model));
    return count;
}

namespace {

// The collector's first threshold raised to `count` for as long as this lives: nothing that the build of
// a list makes is garbage.
class RaisedThreshold {
public:
    explicit RaisedThreshold(long long count) : collector_(py::module_::import("gc")) {
        old_ = collector_.attr("get_threshold")()[py::int_(0)].cast<int>();
        collector_.attr("set_threshold")(
            static_cast<int>(std::min<long long>(std::max<long long>(count, old_), INT_MAX)));
    }
    RaisedThreshold(const RaisedThreshold&) = delete;
    void restore() {
        restored_ = true;
        collector_.attr("set_threshold")(old_);
    }
    ~RaisedThreshold() {
        if (!restored_) run_unraisable(nullptr, [&] { restore(); });
    }

private:
    py::object collector_;
    int old_ = 0;
    bool restored_ = false;
};

py::object handle_list(py::handle cmodel, const ListRow& row, int count) {
    py::object list = steal(PyList_New(count));
    for (int i = 0; i < count; ++i)
        PyList_SET_ITEM(list.ptr(), i, new_handle(*handle_kind(row.kind).type, cmodel.ptr(), row.live ? i : -1));
    return list;
}

}  // namespace

void model_setup(Model& model, bool empty) {
    if (model.vars) return;
    if (!empty) require_open(model);
    int counts[std::size(list_rows)] = {};
    long long total = 0;
    for (std::size_t i = 0; i < std::size(list_rows) && !empty; ++i) {
        counts[i] = count_of(model, handle_kind(list_rows[i].kind).count_attr);
        total += counts[i];
    }
    RaisedThreshold threshold(total);
    const py::object cmodel = borrow(model.cmodel);
    py::object lists[std::size(list_rows)];
    for (std::size_t i = 0; i < std::size(list_rows); ++i) lists[i] = handle_list(cmodel, list_rows[i], counts[i]);
    if (model.vars) return;                           // the collector may have run code that built the lists
    if (cmodel.ptr() != model.cmodel) raise_freed();  // or that disposed of the model
    for (std::size_t i = 0; i < std::size(list_rows); ++i) {
        const ListRow& row = list_rows[i];
        model.*row.list = lists[i].release().ptr();
        if (row.live) model.*row.live = counts[i];
        if (row.deleted) model.*row.deleted = false;
    }
    call_own(model, "update", {});
    threshold.restore();
    require_lists(model);  // an update of a subclass may have disposed of it
}

namespace {

void Model_setup(Model& self, Args args) {
    static const Signature<1> signature{"__setup", 0, {Name("empty")}};
    const auto [empty] = signature.parse(args);
    model_setup(self, empty && checked(PyObject_IsTrue(empty)));
}

// --- reading the lists

template <Kind K>
py::object handle_by_position(Model& self, py::handle position) {
    const Py_ssize_t i = PyNumber_AsSsize_t(position.ptr(), PyExc_IndexError);
    if (i == -1 && PyErr_Occurred()) throw PythonError{};
    model_setup(self);
    return steal(PySequence_GetItem(self.*list_row(K).list, i));
}

template <Kind K>
py::object live_handles(Model& self) {
    model_setup(self);
    const py::object list = borrow(self.*list_row(K).list);  // making a list may run code that exchanges this one
    return steal(PyList_GetSlice(list.ptr(), 0, self.*list_row(K).live));
}

template <Kind K>
py::object numbered_handles(Model& self) {
    model_setup(self);
    const py::object list = borrow(self.*list_row(K).list);
    py::list handles;
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(list.ptr()); ++i)
        if (handle_at(list.ptr(), i)->cindex() >= 0) handles.append(py::handle(PyList_GET_ITEM(list.ptr(), i)));
    return handles;
}

template <Kind K, int (*Find)(ZVNmodel*, const char*, int*)>
py::object handle_by_name(Model& self, const char* function, const Args& args) {
    static const Signature<1> signature{function, 1, {Name("name")}};
    const auto [name] = signature.parse(args);
    const CString text(name);
    model_setup(self);
    int index = -1;
    check(Find(model_pointer(self), text, &index), as_object(self));
    return index < 0 ? none() : steal(PySequence_GetItem(self.*list_row(K).list, index));
}

py::object Model_getVarByName(Model& self, Args args) {
    return handle_by_name<Kind::kVar, ZVNgetvarbyname>(self, "getVarByName", args);
}

py::object Model_getConstrByName(Model& self, Args args) {
    return handle_by_name<Kind::kConstr, ZVNgetconstrbyname>(self, "getConstrByName", args);
}

py::object Model_getQConstrByName(Model& self, Args args) {
    return handle_by_name<Kind::kQConstr, ZVNgetqconstrbyname>(self, "getQConstrByName", args);
}

py::object Model_owns(Model& self, py::handle object) {
    const py::object cmodel = object.attr("_cmodel"), own = borrow(self.cmodel);
    return boolean(checked(PyObject_RichCompareBool(cmodel.ptr(), own.ptr(), Py_EQ)));
}

// --- removal

void Model_removeone(Model& self, py::handle item) {
    const HandleKind* kind = find_handle_kind(item.ptr());
    if (!kind) raise_zelvan(-1, "Item to be removed not a Var, Constr, SOS, QConstr, or GenConstr");
    Handle& handle = *as_handle(item);
    if (!model_owns(self, &handle)) refuse_stranger(self, handle, -1, "Item to be removed is not in model");
    const ListRow& row = list_row(kind->kind);
    if (handle.index == -1) refuse_stranger(self, handle, -1, row.pending_text);
    if (handle.index < -1) return;
    handle.index = -3 - handle.index;
    if (row.deleted) self.*row.deleted = true;
}

void remove_items(Model& self, py::handle items);

void remove_one(Model& self, py::handle item) {
    if (Py_TYPE(as_object(self)) == Model_Type)
        remove_items(self, item);
    else
        call_own(self, "remove", item);
}

void remove_items(Model& self, py::handle items) {
    PyObject* object = items.ptr();
    const NestingLevel level(" while removing a collection of items");
    if (PyList_Check(object) || PyTuple_Check(object)) {
        for (py::handle item : py::reinterpret_borrow<py::object>(items)) remove_one(self, item);
    } else if (PyDict_Check(object)) {
        for (py::handle item : items.attr("values")()) remove_one(self, item);
    } else if (is_mvar(items) || is_mconstr(items) || is_mqconstr(items)) {
        static const Name kFlatten("flatten"), kTolist("tolist");
        const py::object flat = steal(PyObject_CallMethodObjArgs(array_of(items).ptr(), kFlatten.get(), nullptr));
        const py::object list = steal(PyObject_CallMethodObjArgs(flat.ptr(), kTolist.get(), nullptr));
        for (py::handle item : list) remove_one(self, item);
    } else {
        Model_removeone(self, items);
    }
}

void Model_remove(Model& self, Args args) {
    static const Signature<1> signature{"remove", 1, {Name("items")}};
    const auto [items] = signature.parse(args);
    remove_items(self, items);
}

}  // namespace

PyMethodDef model_list_methods[] = {
    {"remove", method<Model_remove>, kKeywords,
     "remove($self, items)\n--\n\n"
     "Mark objects for removal at the next update.\n\n"
     "items  a Var, Constr, SOS, QConstr or GenConstr, or a list, tuple or dict of them; removing one twice is no "
     "error\n\n"
     "Raises ZelvanError for anything else, for an object of another model and for one that waits for the update; "
     "items before it stay marked."},
    {"_removeone", method<Model_removeone>, METH_O,
     "_removeone($self, item, /)\n--\n\nMark one object for removal at the next update."},
    {"getVars", method<live_handles<Kind::kVar>>, METH_NOARGS,
     "getVars($self)\n--\n\nA new list of the variables of the last update, in the order of their indices."},
    {"getConstrs", method<live_handles<Kind::kConstr>>, METH_NOARGS,
     "getConstrs($self)\n--\n\nA new list of the linear constraints of the last update, in the order of their "
     "indices."},
    {"getSOSs", method<numbered_handles<Kind::kSos>>, METH_NOARGS,
     "getSOSs($self)\n--\n\nA new list of the SOS constraints of the last update."},
    {"getQConstrs", method<numbered_handles<Kind::kQConstr>>, METH_NOARGS,
     "getQConstrs($self)\n--\n\nA new list of the quadratic constraints of the last update."},
    {"getGenConstrs", method<numbered_handles<Kind::kGenConstr>>, METH_NOARGS,
     "getGenConstrs($self)\n--\n\nA new list of the general constraints of the last update."},
    {"getVarByName", method<Model_getVarByName>, kKeywords,
     "getVarByName($self, name)\n--\n\nThe variable of that name as of the last update, None when there is none."},
    {"getConstrByName", method<Model_getConstrByName>, kKeywords,
     "getConstrByName($self, name)\n--\n\n"
     "The linear constraint of that name as of the last update, None when there is none."},
    {"getQConstrByName", method<Model_getQConstrByName>, kKeywords,
     "getQConstrByName($self, name)\n--\n\n"
     "The quadratic constraint of that name as of the last update, None when there is none."},
    {"_owns", method<Model_owns>, METH_O,
     "_owns($self, object, /)\n--\n\nWhether the object belongs to the same library model (bool)."},
    {"_Model__setup", method<Model_setup>, kKeywords,
     "__setup($self, empty=False)\n--\n\nBuild the lists of handles unless they are there."},
    {"_Model__getVar", method<handle_by_position<Kind::kVar>>, METH_O,
     "__getVar($self, j, /)\n--\n\nThe variable at a list position."},
    {"_Model__getConstr", method<handle_by_position<Kind::kConstr>>, METH_O,
     "__getConstr($self, i, /)\n--\n\nThe linear constraint at a list position."},
    {"_Model__getSOS", method<handle_by_position<Kind::kSos>>, METH_O,
     "__getSOS($self, s, /)\n--\n\nThe SOS constraint at a list position."},
    {"_Model__getQConstr", method<handle_by_position<Kind::kQConstr>>, METH_O,
     "__getQConstr($self, i, /)\n--\n\nThe quadratic constraint at a list position."},
    {"_Model__getGenConstr", method<handle_by_position<Kind::kGenConstr>>, METH_O,
     "__getGenConstr($self, i, /)\n--\n\nThe general constraint at a list position."},
    {},
};

}  // namespace zelvanpy
