#include "util.h"

#include <string>

#include "exception.h"
#include "pyargs.h"
#include "pynumber.h"

namespace zelvanpy {

namespace {

constexpr const char* kSides[] = {"Left", "Right"};

// Why there is no such product; empty where there is one.
std::string matmul_fault(const Shape& left, const Shape& right) {
    const Shape* const sides[] = {&left, &right};
    for (int side = 0; side < 2; ++side) {
        const int ndim = sides[side]->ndim;
        if (ndim == 1 || ndim == 2) continue;
        return std::string(kSides[side]) + " operand has " + (ndim == 0 ? "not enough" : "too many") + " dimensions (" +
               std::to_string(ndim) + ")";
    }
    const Py_intptr_t inner = left.dims[left.ndim - 1];
    if (inner == right.dims[0]) return {};
    return "Mismatching inner dimensions " + std::to_string(inner) + " vs. " + std::to_string(right.dims[0]);
}

Shape product_shape(const Shape& left, const Shape& right) {
    Shape shape(left.dims, left.ndim - 1);
    for (int i = 1; i < right.ndim; ++i) shape.append(right.dims[i]);
    return shape;
}

// An array of the shape that takes no memory for its cells.
py::object empty_of(py::handle shape) {
    static const Name kEmpty("empty");
    const py::object fields = steal(PyList_New(0)), make = numpy_function(kEmpty);
    return steal(PyObject_CallFunctionObjArgs(make.ptr(), shape.ptr(), fields.ptr(), nullptr));
}

py::object numpy_broadcast(const py::object& arrays) {
    static const Name kBroadcast("broadcast"), kShape("shape");
    const py::object result = steal(PyObject_CallObject(numpy_function(kBroadcast).ptr(), arrays.ptr()));
    return steal(PyObject_GetAttr(result.ptr(), kShape.get()));
}

}  // namespace

Shape matmul_shape(const Shape& left, const Shape& right) {
    const std::string fault = matmul_fault(left, right);
    if (!fault.empty()) raise(PyExc_ValueError, fault.c_str());
    return product_shape(left, right);
}

Shape broadcast_shapes(const Shape& left, const Shape& right) {
    const Shape &longer = left.ndim >= right.ndim ? left : right, &shorter = left.ndim >= right.ndim ? right : left;
    Shape result = longer;
    const int missing = longer.ndim - shorter.ndim;
    for (int i = 0; i < shorter.ndim; ++i) {
        Py_intptr_t& length = result.dims[i + missing];
        if (length == 1) {
            length = shorter.dims[i];
        } else if (shorter.dims[i] != 1 && shorter.dims[i] != length) {
            numpy_broadcast(py::make_tuple(empty_of(shape_tuple(left)), empty_of(shape_tuple(right))));
            raise(PyExc_ValueError, "shape mismatch: objects cannot be broadcast to a single shape");
        }
    }
    return result;
}

Shape normalized_shape(py::handle shape) { return shape_of(empty_of(shape)); }

namespace {

// _axis_to_axeslist(); throws IndexError.
py::object axes_list(py::handle axis, Py_ssize_t ndim) {
    const bool is_all = axis.is_none();
    py::object list = steal(PyList_New(std::max<Py_ssize_t>(ndim, 0)));
    for (Py_ssize_t i = 0; i < ndim; ++i) PyList_SET_ITEM(list.ptr(), i, PyLong_FromLong(is_all ? -1 : 1));
    if (is_all) return list;
    const py::object axes = PyTuple_Check(axis.ptr()) ? borrow(axis) : py::make_tuple(axis);
    const py::object summed = py::int_(-1);
    for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(axes.ptr()); ++i)
        checked(PyObject_SetItem(list.ptr(), PyTuple_GET_ITEM(axes.ptr(), i), summed.ptr()));
    Py_ssize_t place = 0;
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(list.ptr()); ++i)
        if (PyLong_AsLong(PyList_GET_ITEM(list.ptr(), i)) != -1)
            checked(PyList_SetItem(list.ptr(), i, steal(PyLong_FromSsize_t(place++)).release().ptr()));
    return list;
}

}  // namespace

Reduction reduction_over(py::handle axis, const Shape& shape) {
    Reduction reduction;
    if (axis.is_none()) {
        std::fill_n(reduction.places, shape.ndim, -1);
        return reduction;
    }
    py::object list;
    try {
        list = axes_list(axis, shape.ndim);
    } catch (const PythonError&) {
        if (!PyErr_ExceptionMatches(PyExc_IndexError)) throw;
        PyErr_Clear();
        const py::object text = steal(PyUnicode_FromFormat("Invalid axis specifications: %S", axis.ptr()));
        raise_zelvan(-1, text);
    }
    // A slice as an axis may have changed the length.
    if (PyList_GET_SIZE(list.ptr()) != shape.ndim) raise(PyExc_TypeError, "axis must be an integer or a tuple of them");
    for (int i = 0; i < shape.ndim; ++i) {
        reduction.places[i] = static_cast<int>(PyLong_AsLong(PyList_GET_ITEM(list.ptr(), i)));
        if (reduction.places[i] >= 0) reduction.shape.append(shape.dims[i]);
    }
    return reduction;
}

Cells reduced_cells(py::handle sums, const Reduction& reduction, int ndim) {
    Cells cells;
    cells.data = array_fields(sums).data;
    for (int i = 0; i < ndim; ++i)
        cells.strides[i] = reduction.places[i] < 0 ? 0 : array_fields(sums).strides[reduction.places[i]];
    return cells;
}

void require_same_shape(const Shape& own, py::handle operand) {
    const Shape shape = broadcast_shapes(own, shape_of(operand));
    if (shape == own) return;
    PyErr_Format(PyExc_ValueError,
                 "non-broadcastable output operand with shape %S doesn't match the broadcast shape %S",
                 shape_tuple(own).ptr(), shape_tuple(shape).ptr());
    throw PythonError{};
}

namespace {

// The addresses from the first to behind the last cell.
std::pair<const char*, const char*> extent(py::handle array) {
    const Shape shape = shape_of(array);
    const char *low = array_fields(array).data, *high = low;
    if (shape.has_zero()) return {low, high};
    for (int i = 0; i < shape.ndim; ++i) {
        const Py_intptr_t reach = (shape.dims[i] - 1) * array_fields(array).strides[i];
        (reach < 0 ? low : high) += reach;
    }
    return {low, high + sizeof(PyObject*)};
}

}  // namespace

bool overlaps(py::handle left, py::handle right) {
    const auto [left_low, left_high] = extent(left);
    const auto [right_low, right_high] = extent(right);
    return left_low < right_high && right_low < left_high;
}

bool all_refs_match(py::handle left, py::handle right) {
    const Shape shape = shape_of(left);
    if (!(shape == shape_of(right))) return false;
    bool match = true;
    walk<2>(shape, {cells_in(left, shape), cells_in(right, shape)}, [&](const auto& at) {
        match = match && *reinterpret_cast<PyObject**>(at[0]) == *reinterpret_cast<PyObject**>(at[1]);
    });
    return match;
}

namespace {

py::object axis_to_axeslist(py::handle, Args args) {
    static const Signature<2> kSignature{"_axis_to_axeslist", 2, {Name("axis"), Name("ndim")}};
    const auto [axis, ndim] = kSignature.parse(args);
    return axes_list(axis, int_of(ndim));
}

Shape shape_argument(py::handle tuple) {
    const py::object lengths = steal(PySequence_Tuple(tuple.ptr()));
    const Py_ssize_t ndim = PyTuple_GET_SIZE(lengths.ptr());
    if (ndim > kMaxDims) raise(PyExc_ValueError, "A shape has too many dimensions");
    Shape shape;
    for (Py_ssize_t i = 0; i < ndim; ++i) shape.append(list_index(PyTuple_GET_ITEM(lengths.ptr(), i)));
    return shape;
}

py::object matmul_shape_function(py::handle, Args args) {
    static const Signature<3> kSignature{
        "_matmul_shape", 2, {Name("shape_left"), Name("shape_right"), Name("do_raise")}};
    const auto [left_argument, right_argument, do_raise] = kSignature.parse(args);
    const Shape left = shape_argument(left_argument), right = shape_argument(right_argument);
    if (do_raise && checked(PyObject_IsTrue(do_raise))) return shape_tuple(matmul_shape(left, right));
    return matmul_fault(left, right).empty() ? shape_tuple(product_shape(left, right)) : none();
}

py::object broadcast_shapes_function(py::handle, py::handle shapes) {
    const Py_ssize_t num = PyTuple_GET_SIZE(shapes.ptr());
    const py::object arrays = steal(PyTuple_New(num));
    for (Py_ssize_t i = 0; i < num; ++i)
        PyTuple_SET_ITEM(arrays.ptr(), i, empty_of(PyTuple_GET_ITEM(shapes.ptr(), i)).release().ptr());
    return numpy_broadcast(arrays);
}

py::object all_refs_match_function(py::handle, Args args) {
    static const Signature<2> kSignature{"_all_refs_match", 2, {Name("left"), Name("right")}};
    const auto [left, right] = kSignature.parse(args);
    for (PyObject* array : {left, right})
        if (!is_ndarray(array) || !has_cells(array, CellType::kObject))
            raise(PyExc_TypeError, "_all_refs_match() takes arrays of objects");
    return boolean(all_refs_match(left, right));
}

PyMethodDef functions[] = {
    {"_axis_to_axeslist", method<axis_to_axeslist>, kKeywords,
     "_axis_to_axeslist($module, axis, ndim)\n--\n\n"
     "List that maps each of `ndim` axes to its place in what a sum over `axis` (int, tuple of int or None for all)\n"
     "leaves, -1 for a summed one. Raises IndexError for an axis that isn't there."},
    {"_matmul_shape", method<matmul_shape_function>, kKeywords,
     "_matmul_shape($module, shape_left, shape_right, do_raise=False)\n--\n\n"
     "Shape (tuple) of a matrix product of operands of one or two dimensions. Where there is none: None, or a\n"
     "ValueError if `do_raise` is true."},
    {"_broadcast_shapes", reinterpret_cast<PyCFunction>(slot_function<broadcast_shapes_function>), METH_VARARGS,
     "_broadcast_shapes($module, /, *args)\n--\n\n"
     "Shape (tuple) that numpy broadcasts the given shapes to. Raises its ValueError."},
    {"_all_refs_match", method<all_refs_match_function>, kKeywords,
     "_all_refs_match($module, left, right)\n--\n\n"
     "Whether two arrays of objects have the same shape and hold the same objects at all positions."},
    {},
};

}  // namespace

void init_util(py::module_& module) { checked(PyModule_AddFunctions(module.ptr(), functions)); }

}  // namespace zelvanpy
