// MConstr and MQConstr: one template over the row that tells them apart.

#include "mconstr.h"

#include "pyargs.h"

namespace zelvanpy {

PyTypeObject* MConstr_Type = nullptr;
PyTypeObject* MQConstr_Type = nullptr;

namespace {

constexpr char kDoc[] =
    "Array of constraints with the shape of the matrix expression that made them, or of addMConstr.\n\n"
    "Attributes of all constraints are read and set as arrays: c.Pi, c.RHS = b. A slice shares the handles and the\n"
    "memory of the array.";

constexpr HandleArrayKind kKinds[] = {
    {&MConstr_Type, Kind::kConstr, "zelvanpy.MConstr", "MConstr", "_constrarr", "Constr", kDoc},
    {&MQConstr_Type, Kind::kQConstr, "zelvanpy.MQConstr", "MQConstr", "_qconstrarr", "MQConstr", kDoc},
};

template <int K>
PyTypeObject* type_of() {
    return *kKinds[K].type;
}

template <int K>
void init(HandleArray& self, PyObject* args, PyObject* kwargs) {
    static const Signature<1> kInit{kKinds[K].name, 1, {Name(kKinds[K].field + 1)}};
    const auto [array] = kInit.parse(args, kwargs);
    if (!is_ndarray(array) || !has_cells(array, CellType::kObject))
        raise(PyExc_AssertionError, "an ndarray of constraints is required");
    set_handle_array(self, borrow(array));
}

template <int K>
py::object fromlist(py::handle, Args args) {
    static const Signature<1> kFromlist{"_fromlist", 1, {Name("constrlist")}};
    const auto [list] = kFromlist.parse(args);
    const py::object items = steal(PySequence_List(list));
    const Py_ssize_t size = PyList_GET_SIZE(items.ptr());
    const py::object array = new_objects({size});
    for (Py_ssize_t i = 0; i < size; ++i) {
        handle_in(PyList_GET_ITEM(items.ptr(), i), kKinds[K].kind);
        data_of<PyObject*>(array)[i] = borrow(PyList_GET_ITEM(items.ptr(), i)).release().ptr();
    }
    return new_handle_array(type_of<K>(), array);
}

template <int K>
py::object getitem(HandleArray& self, py::handle index) {
    const py::object array = array_of(self);
    const py::object sub = steal(PyObject_GetItem(array.ptr(), index.ptr()));
    return new_handle_array(type_of<K>(), is_ndarray(sub) ? sub : object_scalar(sub));
}
template <int K>
py::object at(HandleArray& self, Py_ssize_t i) {
    return getitem<K>(self, steal(PyLong_FromSsize_t(i)));
}

int count_in_model(const HandleArray& self, Kind kind) {
    int count = 0;
    ZVNgetintattr(model_pointer(self.cmodel), handle_kind(kind).count_attr, &count);
    return count;
}

template <int K>
py::object count(HandleArray& self) {
    return self.cmodel ? py::object(py::int_(count_in_model(self, kKinds[K].kind))) : none();
}

template <int K>
py::object repr(HandleArray& self) {
    bool pending = false, removed = false;
    const int rows = self.cmodel ? count_in_model(self, kKinds[K].kind) : 0;
    for (const int index : handle_indices(self)) {
        pending |= index == -1 || index > rows;
        removed |= index <= -2;
    }
    return steal(PyUnicode_FromFormat("<%s %S%s%s>", kKinds[K].name, shape_tuple(shape_of(array_of(self))).ptr(),
                                      pending ? " *awaiting model update*" : "", removed ? " (some removed)" : ""));
}

template <int K>
void make_type(py::module_& module, const char* count_name) {
    HandleExtras extras;
    extras.slots = {
        {Py_tp_new, reinterpret_cast<void*>(PyType_GenericNew)},
        {Py_tp_init, slot<init<K>>()},
        {Py_tp_repr, slot<repr<K>>()},
        {Py_mp_subscript, slot<getitem<K>>()},
        {Py_sq_item, slot<at<K>>()},
    };
    extras.methods = {
        {"_fromlist", method<fromlist<K>>, kKeywords | METH_CLASS,
         "_fromlist($type, constrlist)\n--\n\nArray of one dimension of a list of constraints."},
        {count_name, method<count<K>>, METH_NOARGS, "Number of such constraints of the model, None without a model."},
    };
    make_handle_array_type(module, kKinds[K], std::move(extras));
}

}  // namespace

void init_mconstr(py::module_& module) {
    make_type<0>(module, "_numrows");
    make_type<1>(module, "_numqconstrs");
}

}  // namespace zelvanpy
