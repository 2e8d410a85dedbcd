// The type MVar: construction, shape, sums, text.

#include "exception.h"
#include "linexpr.h"
#include "mlinexpr_build.h"
#include "mvar.h"
#include "mvar_ops.h"
#include "pyargs.h"
#include "pynumber.h"
#include "pytype.h"

namespace zelvanpy {

PyTypeObject* MVar_Type = nullptr;

namespace {

py::handle object_of(HandleArray& self) { return reinterpret_cast<PyObject*>(&self); }

// --- construction

py::object array_argument(py::handle argument) {
    static const Name kArray("array");
    const char* instead = is_var(argument) ? "fromvar" : is_ndarray(argument) ? nullptr : "fromlist";
    if (!instead) return borrow(argument);
    checked(PyErr_WarnFormat(PyExc_DeprecationWarning, 1, "The MVar constructor is deprecated, use MVar.%s instead",
                             instead));
    py::object list = borrow(argument);
    if (is_var(argument)) list = steal(Py_BuildValue("[O]", argument.ptr()));
    return numpy_function(kArray)(list);
}

void MVar_init(HandleArray& self, PyObject* args, PyObject* kwargs) {
    static const Signature<1> kInit{"MVar", 1, {Name("arr")}};
    const auto [argument] = kInit.parse(args, kwargs);
    set_handle_array(self, object_copy(array_argument(argument)));
}

// The elements of a list that holds nothing but Var; empty for any other object.
py::object array_of_list(py::handle list) {
    if (!PyList_Check(list.ptr())) return {};
    const Py_ssize_t size = PyList_GET_SIZE(list.ptr());
    for (Py_ssize_t i = 0; i < size; ++i)
        if (!is_var(PyList_GET_ITEM(list.ptr(), i))) return {};
    py::object array = new_objects({size});
    // Making the array may have run code that changed the list.
    if (PyList_GET_SIZE(list.ptr()) != size) raise(PyExc_RuntimeError, "list changed size");
    PyObject** cells = data_of<PyObject*>(array);
    for (Py_ssize_t i = 0; i < size; ++i) cells[i] = borrow(PyList_GET_ITEM(list.ptr(), i)).release().ptr();
    return array;
}

py::object objects_of(py::handle nested) {
    static const Name kArray("array"), kDtype("dtype");
    const py::object arguments = py::make_tuple(borrow(nested));
    const py::object options = steal(Py_BuildValue("{Os}", kDtype.get(), "O"));
    return steal(PyObject_Call(numpy_function(kArray).ptr(), arguments.ptr(), options.ptr()));
}

py::object MVar_fromlist(py::handle, Args args) {
    static const Signature<1> kFromlist{"fromlist", 1, {Name("varlist")}};
    const auto [list] = kFromlist.parse(args);
    if (py::object array = array_of_list(list)) return new_mvar(std::move(array));
    const py::object array = objects_of(list);
    const Shape shape = shape_of(array);
    walk<1>(shape, {cells_in(array, shape)}, [](const auto& at) {
        const py::object element = object_at(at[0]);
        if (is_var(element)) return;
        PyErr_Format(PyExc_ValueError, "MVar.fromlist expects a list of Vars, '%S' is not valid input", element.ptr());
        throw PythonError{};
    });
    return new_mvar(object_copy(array));
}

py::object MVar_fromvar(py::handle, Args args) {
    static const Signature<1> kFromvar{"fromvar", 1, {Name("var")}};
    const auto [var] = kFromvar.parse(args);
    return new_mvar(is_var(var) ? object_scalar(var) : object_copy(objects_of(var)));
}

// --- views and shape

// A new MVar of what a method of the array gives.
template <class... A>
py::object reshaped(HandleArray& self, const Name& name, const A&... arguments) {
    const py::object array = array_of(self);
    const py::object function = steal(PyObject_GetAttr(array.ptr(), name.get()));
    const py::object view =
        steal(PyObject_CallFunctionObjArgs(function.ptr(), py::handle(arguments).ptr()..., nullptr));
    return new_mvar(object_copy(view));
}

py::object MVar_copy(HandleArray& self) { return new_mvar(object_copy(array_of(self))); }
py::object MVar_transpose(HandleArray& self) {
    static const Name kTranspose("transpose");
    return reshaped(self, kTranspose);
}

py::object MVar_reshape(HandleArray& self, PyObject* args, PyObject* kwargs) {
    static const Name kReshape("reshape"), kOrder("order");
    if (kwargs && (PyDict_Size(kwargs) != 1 || !PyDict_GetItemWithError(kwargs, kOrder.get())))
        if (PyDict_Size(kwargs) != 0) raise(PyExc_TypeError, "reshape() takes no keyword argument but 'order'");
    const py::object function = steal(PyObject_GetAttr(array_of(self).ptr(), kReshape.get()));
    return new_mvar(object_copy(steal(PyObject_Call(function.ptr(), args, kwargs))));
}

py::object MVar_diagonal(HandleArray& self, Args args) {
    static const Name kMethod("diagonal");
    static const Signature<3> kDiagonal{"diagonal", 0, {Name("offset"), Name("axis1"), Name("axis2")}};
    const auto [offset, axis1, axis2] = kDiagonal.parse(args);
    const auto given = [](PyObject* argument, int otherwise) {
        return argument ? borrow(argument) : py::object(py::int_(otherwise));
    };
    return reshaped(self, kMethod, given(offset, 0), given(axis1, 0), given(axis2, 1));
}

py::object MVar_squeeze(HandleArray& self, Args args) {
    static const Name kMethod("squeeze");
    static const Signature<1> kSqueeze{"_squeeze", 0, {Name("axis")}};
    const auto [axis] = kSqueeze.parse(args);
    return reshaped(self, kMethod, axis ? py::handle(axis) : py::handle(Py_None));
}

py::object MVar_getitem(HandleArray& self, py::handle index) {
    const py::object array = array_of(self);
    const py::object sub = steal(PyObject_GetItem(array.ptr(), index.ptr()));
    if (is_var(sub)) return mvar_of(sub);
    if (!is_ndarray(sub)) raise(PyExc_TypeError, "An element of an MVar is no Var");
    return new_mvar(object_copy(sub));
}

// The old protocol of iteration asks for one position after the other.
py::object MVar_at(HandleArray& self, Py_ssize_t i) { return MVar_getitem(self, steal(PyLong_FromSsize_t(i))); }

py::object MVar_indexed_data(HandleArray& self, Args args) {
    static const Name kArray("array"), kEmptyLike("empty_like"), kFlat("flat");
    static const Signature<2> kSignature{"_indexed_data", 2, {Name("a"), Name("dtype")}};
    const auto [data, dtype] = kSignature.parse(args);
    const py::object type = borrow(dtype), vector = numpy_function(kArray)(borrow(data), type);
    const std::vector<int> columns = handle_indices(self);
    const py::object indices = new_array({static_cast<Py_ssize_t>(columns.size())}, CellType::kInt32);
    std::copy(columns.begin(), columns.end(), data_of<int>(indices));
    const py::object gathered = steal(PyObject_GetItem(vector.ptr(), indices.ptr()));
    return gathered.attr("reshape")(shape_tuple(shape_of(array_of(self))));
}

// --- sums

py::object MVar_sum(HandleArray& self, Args args) {
    static const Signature<2> kSum{"sum", 0, {Name("axis"), Name("out")}};
    const auto [axis_argument, out] = kSum.parse(args);
    if (out && out != Py_None) raise(PyExc_TypeError, "sum() can't put its result into an array");
    const py::object vars = array_of(self);
    const Shape shape = shape_of(vars);
    const Reduction reduction = reduction_over(axis_argument ? axis_argument : Py_None, shape);
    py::object result = mlinexpr_zeros_full(reduction.shape);
    const py::object sums = cells_of(as_mlinexpr(result));
    walk<2>(shape, {reduced_cells(sums, reduction, shape.ndim), cells_in(vars, shape)}, [](const auto& at) {
        LinExpr* sum = *reinterpret_cast<LinExpr**>(at[0]);
        linexpr_append(sum, 1.0, var_in(*reinterpret_cast<PyObject**>(at[1])));
    });
    return result;
}

py::object MVar_toexpr(HandleArray& self) { return mlinexpr_from_mvar(object_of(self)); }

// --- text

py::object MVar_repr(HandleArray& self) {
    const py::object array = array_of(self);
    bool pending = false, removed = false;
    for (const int index : handle_indices(self)) {
        pending |= index == -1;
        removed |= index <= -2;
    }
    const py::object text = steal(PyObject_Repr(array.ptr()));
    const Py_ssize_t length = PyUnicode_GET_LENGTH(text.ptr()),
                     cut = PyUnicode_FindChar(text.ptr(), ',', 0, length, -1);
    const py::object shown = steal(PyUnicode_Substring(text.ptr(), 0, cut < 0 ? length : cut));
    return steal(PyUnicode_FromFormat("<MVar %S%s%s>\n%U)", shape_tuple(shape_of(array)).ptr(),
                                      pending ? " *awaiting update*" : "", removed ? " (some removed)" : "",
                                      shown.ptr()));
}

constexpr char kDoc[] =
    "Array of variables (Var) of any shape, used as numpy arrays are.\n\n"
    "Made by MVar.fromlist, MVar.fromvar, and by indexing another one. `A @ x`, `2 * x - b` and `x.sum()` make an\n"
    "MLinExpr, `A @ x <= b` a constraint. Attributes of all variables are read and set as arrays: x.X, x.UB = 1.\n"
    "Shapes, indices and broadcasting are numpy's; numpy, and scipy for sparse matrices, are imported when needed.";

const HandleArrayKind kKind = {&MVar_Type, Kind::kVar, "zelvanpy.MVar", "MVar", "_vararr", "Var", kDoc};

std::vector<PyMethodDef> methods() {
    return {
        {"fromlist", method<MVar_fromlist>, kKeywords | METH_STATIC,
         "fromlist(varlist)\n--\n\n"
         "MVar of a list of Var, nested for more than one dimension. Raises ValueError for any other element."},
        {"fromvar", method<MVar_fromvar>, kKeywords | METH_STATIC,
         "fromvar(var)\n--\n\nMVar without dimensions of one Var."},
        {"copy", method<MVar_copy>, METH_NOARGS, "copy($self)\n--\n\nAn MVar with the same variables."},
        {"transpose", method<MVar_transpose>, METH_NOARGS,
         "transpose($self)\n--\n\nA copy with the dimensions in reverse order."},
        {"reshape", reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(slot_function<MVar_reshape>)),
         METH_VARARGS | METH_KEYWORDS,
         "reshape($self, *shape, order='C')\n--\n\n"
         "A copy with other dimensions, one of which may be -1. Raises ValueError where the size differs."},
        {"diagonal", method<MVar_diagonal>, kKeywords,
         "diagonal($self, offset=0, axis1=0, axis2=1)\n--\n\nA copy of a diagonal."},
        {"_squeeze", method<MVar_squeeze>, kKeywords,
         "_squeeze($self, axis=None)\n--\n\nA copy without dimensions of length 1."},
        {"sum", method<MVar_sum>, kKeywords,
         "sum($self, axis=None, out=None)\n--\n\n"
         "MLinExpr of the sums over an axis (int), several (tuple) or all; `out` is there for numpy.sum and must be\n"
         "None. Raises ZelvanError for an axis that isn't there."},
        {"_toexpr", method<MVar_toexpr>, METH_NOARGS, "_toexpr($self)\n--\n\nThe variables as an MLinExpr."},
        {"_indexed_data", method<MVar_indexed_data>, kKeywords,
         "_indexed_data($self, a, dtype)\n--\n\n"
         "The elements of `a`, a vector with one for each column of the model, that belong to the variables: an\n"
         "ndarray of this shape."},
    };
}

}  // namespace

void init_mvar_type(py::module_& module) {
    HandleExtras extras;
    extras.slots = {
        {Py_tp_new, reinterpret_cast<void*>(PyType_GenericNew)},
        {Py_tp_init, slot<MVar_init>()},
        {Py_tp_repr, slot<MVar_repr>()},
        {Py_mp_subscript, slot<MVar_getitem>()},
        {Py_sq_item, slot<MVar_at>()},
    };
    const std::vector<PyType_Slot>& operators = mvar_operator_slots();
    extras.slots.insert(extras.slots.end(), operators.begin(), operators.end());
    extras.methods = methods();
    extras.properties = {{"T", getter_of<MVar_transpose>, nullptr, "The same as transpose().", nullptr}};
    make_handle_array_type(module, kKind, std::move(extras));
    checked(PyObject_SetAttrString(reinterpret_cast<PyObject*>(MVar_Type), "__array_priority__", py::int_(100).ptr()));
    for (const char* name : {"__rtruediv__", "__rpow__"})
        checked(PyObject_DelAttrString(reinterpret_cast<PyObject*>(MVar_Type), name));
}

}  // namespace zelvanpy
