// multidict: one dict of value lists to a key list and a tupledict for each position.

#include "pyargs.h"
#include "pyiter.h"
#include "tupledict.h"

namespace zelvanpy {

namespace {

// One tupledict for each position of the value lists, as far as the shortest goes. Null, with no exception set,
// where the values are no collections.
py::object columns_of(py::handle keys, py::handle values) {
    py::object columns = steal(PyList_New(0));
    try {
        const py::object unpacked = steal(PySequence_Tuple(values.ptr()));
        const py::object zipped = steal(PyObject_CallObject(reinterpret_cast<PyObject*>(&PyZip_Type), unpacked.ptr()));
        for_each_next(zipped, [&](const py::object& column) {
            checked(PyList_Append(columns.ptr(), new_tupledict(keys, column).ptr()));
        });
        return columns;
    } catch (...) {
        translate_exception();
        if (!PyErr_ExceptionMatches(PyExc_TypeError)) throw PythonError{};
        PyErr_Clear();
        return {};
    }
}

py::object multidict(py::handle, Args args) {
    static const Signature<1> kSignature{"multidict", 1, {Name("data")}};
    const auto [data] = kSignature.parse(args);
    py::object d = steal(PyObject_CallFunctionObjArgs(reinterpret_cast<PyObject*>(TupleDict_Type), data, nullptr));
    const py::object keys = tupledict_keys(as_tupledict(d));
    py::object result = steal(PyList_New(0));
    checked(PyList_Append(result.ptr(), keys.ptr()));
    const py::object columns = columns_of(keys, tupledict_values(as_tupledict(d)));
    if (!columns)
        checked(PyList_Append(result.ptr(), d.ptr()));
    else
        checked(PyList_SetSlice(result.ptr(), 1, 1, columns.ptr()));
    return result;
}

PyMethodDef functions[] = {
    {"multidict", method<multidict>, kKeywords,
     "multidict(data)\n--\n\n"
     "A list of the keys of `data` as a tuplelist and of one tupledict for each position of its values.\n\n"
     "`data` is a dict, or what dict() takes, from keys to lists of equal length; longer lists are cut. Where the "
     "values\n"
     "are scalars, the second and last item is a tupledict of `data` itself. Raises ValueError if the keys are of\n"
     "different kinds or lengths.\n\n"
     "    arcs, capacity, cost = multidict({(1, 2): [10, 4.0], (1, 3): [20, 3.5]})"},
    {}};

}  // namespace

void init_multidict(py::module_& module) { checked(PyModule_AddFunctions(module.ptr(), functions)); }

}  // namespace zelvanpy
