#include "pyarray.h"

namespace zelvanpy {

namespace {

constexpr int kAligned = py::detail::npy_api::NPY_ARRAY_ALIGNED_;
constexpr int kWriteable = py::detail::npy_api::NPY_ARRAY_WRITEABLE_;

PyObject* descriptor(CellType type) {
    return steal(numpy_api().PyArray_DescrFromType_(static_cast<int>(type))).release().ptr();
}

// np.array(object, dtype=type, order="C"), which is a copy always.
py::object array_of(py::handle object, const char* type) {
    static const Name kArray("array"), kDtype("dtype"), kOrder("order");
    const py::object make = numpy_function(kArray), arguments = steal(PyTuple_Pack(1, object.ptr()));
    const py::object options = steal(Py_BuildValue("{OsOs}", kDtype.get(), type, kOrder.get(), "C"));
    return steal(PyObject_Call(make.ptr(), arguments.ptr(), options.ptr()));
}

}  // namespace

py::object shape_tuple(const Shape& shape) {
    py::object tuple = steal(PyTuple_New(shape.ndim));
    for (int i = 0; i < shape.ndim; ++i)
        PyTuple_SET_ITEM(tuple.ptr(), i, steal(PyLong_FromSsize_t(shape.dims[i])).release().ptr());
    return tuple;
}

py::handle numpy() {
    static PyObject* module = nullptr;
    if (!module) module = steal(PyImport_ImportModule("numpy")).release().ptr();
    return module;
}

py::object numpy_function(const Name& name) { return steal(PyObject_GetAttr(numpy().ptr(), name.get())); }

bool has_cells(py::handle array, CellType type) {
    if (!(array_fields(array).flags & kAligned)) return false;
    const py::dtype held = py::reinterpret_borrow<py::dtype>(array_fields(array).descr);
    const char order = held.byteorder();
    return held.num() == static_cast<int>(type) && (order == '=' || order == '|');
}

py::object new_array(const Shape& shape, CellType type) {
    const auto& api = numpy_api();
    return steal(api.PyArray_NewFromDescr_(api.PyArray_Type_, descriptor(type), shape.ndim, shape.dims, nullptr,
                                           nullptr, 0, nullptr));
}

py::object new_doubles(const Shape& shape, double fill) {
    py::object array = new_array(shape, CellType::kDouble);
    std::fill_n(data_of<double>(array), shape.size(), fill);
    return array;
}

py::object array_over(const Shape& shape, CellType type, void* data, const py::object& owner) {
    const auto& api = numpy_api();
    py::object array = steal(api.PyArray_NewFromDescr_(api.PyArray_Type_, descriptor(type), shape.ndim, shape.dims,
                                                       nullptr, data, kAligned | kWriteable, nullptr));
    checked(api.PyArray_SetBaseObject_(array.ptr(), borrow(owner).release().ptr()));
    return array;
}

py::object object_scalar(py::handle object) {
    py::object array = new_objects({});
    set_object(array_fields(array).data, borrow(object));
    return array;
}

py::object object_copy(py::handle array) {
    const Shape shape = shape_of(array);
    if (!has_cells(array, CellType::kObject)) return array_of(array, "O");
    py::object copy = new_objects(shape);
    walk<2>(shape, {cells_in(copy, shape), cells_in(array, shape)},
            [](const auto& at) { set_object(at[0], object_at(at[1])); });
    return copy;
}

py::object as_doubles(py::handle array) {
    if (has_cells(array, CellType::kDouble)) return borrow(array);
    static const Name kAstype("astype"), kCasting("casting");
    const py::object convert = steal(PyObject_GetAttr(array.ptr(), kAstype.get()));
    const py::object arguments = py::make_tuple(py::str("d"));
    const py::object options = steal(Py_BuildValue("{Os}", kCasting.get(), "safe"));
    return steal(PyObject_Call(convert.ptr(), arguments.ptr(), options.ptr()));
}

py::object private_doubles(py::handle object) {
    if (is_ndarray(object) && has_cells(object, CellType::kDouble)) {
        const Shape shape = shape_of(object);
        py::object copy = new_array(shape, CellType::kDouble);
        double* out = data_of<double>(copy);
        if (is_contiguous(object)) {
            std::copy_n(data_of<double>(object), shape.size(), out);
        } else {
            walk<1>(shape, {cells_in(object, shape)}, [&](const auto& at) { *out++ = double_at(at[0]); });
        }
        return copy;
    }
    return array_of(object, "d");
}

Cells cells_in(py::handle array, const Shape& shape) {
    const auto& fields = array_fields(array);
    Cells cells;
    cells.data = fields.data;
    const int missing = shape.ndim - fields.nd;
    for (int i = 0; i < shape.ndim; ++i) {
        const int own = i - missing;
        const bool repeats = own < 0 || (fields.dimensions[own] == 1 && shape.dims[i] != 1);
        cells.strides[i] = repeats ? 0 : fields.strides[own];
    }
    return cells;
}

}  // namespace zelvanpy
