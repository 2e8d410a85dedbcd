// addMVar, addMConstr, getA: variables and rows by the array.

#include "model_matrix.h"

#include <algorithm>
#include <climits>

#include "mconstr.h"
#include "mlinexpr_build.h"
#include "mlinexpr_ops.h"
#include "model_build_names.h"
#include "model_build_rows.h"
#include "model_stranger.h"
#include "mvar.h"
#include "pyargs.h"
#include "pycontainer.h"
#include "pynumber.h"

namespace zelvanpy {

namespace {

// ---- addMVar

const Signature<6> kAddMVar{
    "addMVar", 1, {Name("shape"), Name("lb"), Name("ub"), Name("obj"), Name("vtype"), Name("name")}};

bool given(PyObject* argument) { return argument && argument != Py_None; }

Shape shape_argument(const py::object& lengths) {
    Shape shape;
    if (PyTuple_GET_SIZE(lengths.ptr()) > kMaxDims) raise(PyExc_ValueError, "addMVar(): too many dimensions");
    double size = 1.0;
    for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(lengths.ptr()); ++i) {
        const int length = int_of(PyTuple_GET_ITEM(lengths.ptr(), i));
        if (length < 0) raise(PyExc_ValueError, "negative dimensions are not allowed");
        shape.append(length);
        size *= length;
    }
    if (size > ZVN_MAXINT) raise_zelvan(ZVN_ERROR_OUT_OF_MEMORY, "Out of memory for variable namespace");
    return shape;
}

// np.broadcast_to(np.array(value, dtype), shape).flatten()
py::object broadcast_array(py::handle value, const char* type, const Shape& shape) {
    static const Name kArray("array"), kBroadcast("broadcast_to"), kFlatten("flatten");
    const py::object array = numpy_function(kArray)(value, type);
    const py::object wide = numpy_function(kBroadcast)(array, shape_tuple(shape));
    return steal(PyObject_CallMethodObjArgs(wide.ptr(), kFlatten.get(), nullptr));
}

// The numbers of a keyword, one for each cell; empty where it isn't given.
py::object numbers(PyObject* value, const Shape& shape) {
    if (!given(value)) return {};
    py::object array = broadcast_array(value, "d", shape);
    double* cells = data_of<double>(array);
    std::transform(cells, cells + shape.size(), cells, library_double);
    return array;
}

template <class T>
const T* data_or_null(const py::object& array) {
    return array ? data_of<T>(array) : nullptr;
}

void collect_names(NameBuffer& names, PyObject* name, const Shape& shape) {
    if (!given(name)) return;
    if (PyUnicode_Check(name)) return names.add_indexed(name, shape.dims, shape.ndim);
    static const Name kArray("array"), kDtype("dtype"), kTolist("tolist"), kFlatten("flatten");
    const py::object options = steal(Py_BuildValue("{OO}", kDtype.get(), &PyUnicode_Type));
    const py::object array =
        steal(PyObject_Call(numpy_function(kArray).ptr(), py::make_tuple(borrow(name)).ptr(), options.ptr()));
    if (!(shape_of(array) == shape)) raise(PyExc_ValueError, "name argument has incompatible shape");
    const py::object flat = steal(PyObject_CallMethodObjArgs(array.ptr(), kFlatten.get(), nullptr));
    const py::object list = steal(PyObject_CallMethodObjArgs(flat.ptr(), kTolist.get(), nullptr));
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(list.ptr()); ++i) names.add(PyList_GET_ITEM(list.ptr(), i));
}

// An array of the elements of a list.
py::object array_of_list(const py::object& list, const Shape& shape) {
    py::object array = new_objects(shape);
    PyObject** cells = data_of<PyObject*>(array);
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(list.ptr()); ++i)
        cells[i] = borrow(PyList_GET_ITEM(list.ptr(), i)).release().ptr();
    return array;
}

py::object Model_addMVar(Model& self, Args args) {
    const auto [shape_given, lb, ub, obj, vtype, name] = kAddMVar.parse(args);
    require_open(self);
    const py::object lengths =
        PyTuple_CheckExact(shape_given) ? borrow(shape_given) : py::make_tuple(borrow(shape_given));
    const Shape shape = shape_argument(lengths);
    if (shape.size() == 0) return new_mvar(new_objects(shape));
    const py::object lower = numbers(lb, shape), upper = numbers(ub, shape), cost = numbers(obj, shape);
    const py::object letters = given(vtype) ? broadcast_array(vtype, "S1", shape) : py::object();
    NameBuffer names(true);
    collect_names(names, name, shape);
    model_setup(self);
    const auto count = static_cast<int>(shape.size());
    const py::object vars = new_handles(self, Kind::kVar, count);
    const py::object array = array_of_list(vars, shape);
    require_member(self, PyList_GET_ITEM(vars.ptr(), 0));
    check(ZVNaddvars(model_pointer(self), count, 0, nullptr, nullptr, nullptr, data_or_null<double>(cost),
                     data_or_null<double>(lower), data_or_null<double>(upper), data_or_null<char>(letters),
                     names.pointers()),
          as_object(self));
    list_handles(self, Kind::kVar, vars);
    return new_mvar(array);
}

}  // namespace

// ---- variables of matrix arguments

py::object matrix_vars(Model& self, py::handle x) {
    if (is_mvar(x)) return borrow(x);
    const py::object nothing = none();
    if (x.is_none() || checked(PyObject_RichCompareBool(x.ptr(), nothing.ptr(), Py_EQ))) {
        model_setup(self);
        const Py_ssize_t size = PyList_GET_SIZE(self.vars);
        return new_mvar(array_of_list(borrow(self.vars), {size}));
    }
    static const Name kFromlist("fromlist");
    return py::getattr(reinterpret_cast<PyObject*>(MVar_Type), kFromlist)(x);
}

std::vector<int> columns_of(const Model& self, const Vars::Span& vars) {
    std::vector<int> columns(vars.size);
    for (std::size_t i = 0; i < vars.size; ++i) {
        const Handle* var = vars[i];
        columns[i] = var->cindex();
        if (columns[i] < 0 || !model_owns(self, var))
            refuse_stranger(self, *var, ZVN_ERROR_NOT_IN_MODEL, "Variable not in model");
    }
    return columns;
}

char* const* cell_names(NameBuffer& names, py::handle name, const Shape& shape) {
    if (!name || !checked(PyObject_IsTrue(name.ptr()))) return nullptr;
    names.add_indexed(name, shape.dims, shape.ndim);
    return names.pointers();
}

// ---- rows

namespace {

// Entries of rows as the library takes them: those of the matrix where columns are its own, otherwise copies.
struct LibraryRows {
    std::vector<int> begin, index;
    std::vector<double> value;
    const int *begin_data, *index_data;
    const double* value_data;
};

bool rises(const int* first, const int* last) {
    return std::adjacent_find(first, last, [](int a, int b) { return a >= b; }) == last;
}

// Whether no row holds a column twice, by the order in which they come.
bool has_distinct_columns(const Rows& rows, const std::vector<int>& columns) {
    if (!rises(columns.data(), columns.data() + columns.size())) return false;
    for (Py_intptr_t i = 0; i < rows.num_rows; ++i)
        if (!rises(rows.index.data() + rows.begin[i], rows.index.data() + rows.begin[i + 1])) return false;
    return true;
}

void clean_rows(LibraryRows& out, const Rows& rows) {
    out.begin.resize(rows.num_rows + 1);
    out.value.assign(rows.value.data(), rows.value.data() + rows.num_entries());
    int end = 0;
    for (Py_intptr_t i = 0; i < rows.num_rows; ++i) {
        int length = rows.begin[i + 1] - rows.begin[i];
        int* index = out.index.data() + rows.begin[i];
        double* value = out.value.data() + rows.begin[i];
        if (ZVNclean2(&length, index, value) == ZVN_ERROR_OUT_OF_MEMORY) throw std::bad_alloc();
        std::copy_n(index, length, out.index.data() + end);
        std::copy_n(value, length, out.value.data() + end);
        out.begin[i] = end;
        end += length;
    }
    out.begin[rows.num_rows] = end;
}

LibraryRows library_rows(const Rows& rows, const std::vector<int>& columns) {
    LibraryRows out;
    out.begin_data = rows.begin.data();
    out.index_data = rows.index.data();
    out.value_data = rows.value.data();
    bool is_same = true;
    for (std::size_t j = 0; j < columns.size(); ++j) is_same &= columns[j] == static_cast<int>(j);
    const bool is_distinct = has_distinct_columns(rows, columns);
    if (is_same && is_distinct) return out;
    const std::size_t num = rows.num_entries();
    out.index.resize(num);
    for (std::size_t k = 0; k < num; ++k) out.index[k] = columns.at(rows.index[k]);
    out.index_data = out.index.data();
    if (is_distinct) return out;
    clean_rows(out, rows);
    out.begin_data = out.begin.data();
    out.index_data = out.index.data();
    out.value_data = out.value.data();
    return out;
}

}  // namespace

py::object add_matrix_rows(Model& self, const Rows& rows, Vars& vars, const std::vector<char>& senses,
                           const std::vector<double>& rhs, char* const* names, const Shape& shape) {
    model_setup(self);
    const auto count = static_cast<int>(rows.num_rows);
    const py::object handles = new_handles(self, Kind::kConstr, count);
    const py::object array = array_of_list(handles, shape);
    if (count > 0) {
        require_member(self, PyList_GET_ITEM(handles.ptr(), 0));
        const LibraryRows entries = library_rows(rows, columns_of(self, vars.span()));
        check(ZVNaddconstrs(model_pointer(self), count, entries.begin_data[count], entries.begin_data,
                            entries.index_data, entries.value_data, senses.data(), rhs.data(), names),
              as_object(self));
        list_handles(self, Kind::kConstr, handles);
    }
    return new_handle_array(MConstr_Type, array);
}

namespace {

// ---- addMConstr

const Signature<5> kAddMConstr{"addMConstr", 4, {Name("A"), Name("x"), Name("sense"), Name("b"), Name("name")}};

py::object element_at(PyObject* sequence, Py_ssize_t i) {
    return steal(PyObject_GetItem(sequence, steal(PyLong_FromSsize_t(i)).ptr()));
}

char sense_of(py::handle letter) {
    if (PyBytes_Check(letter.ptr()) && PyBytes_GET_SIZE(letter.ptr()) == 1) return PyBytes_AS_STRING(letter.ptr())[0];
    return sense_argument(letter.ptr());
}

[[noreturn]] void raise_length(const char* argument) {
    const std::string text = std::string("Incompatible '") + argument + "' argument length";
    raise_zelvan(-1, text.c_str());
}

std::vector<char> senses_of(PyObject* sense, Py_ssize_t count) {
    if (PyUnicode_Check(sense)) return std::vector<char>(count, count ? sense_argument(sense) : ZVN_LESS_EQUAL);
    if (checked(PyObject_Size(sense)) != count) raise_length("sense");
    std::vector<char> senses(count);
    for (Py_ssize_t i = 0; i < count; ++i) senses[i] = sense_of(element_at(sense, i));
    return senses;
}

std::vector<double> sides_of(PyObject* b, Py_ssize_t count) {
    if (checked(PyObject_Size(b)) != count) raise_length("rhs");
    std::vector<double> sides(count);
    if (is_ndarray(b) && has_cells(b, CellType::kDouble) && array_fields(b).nd == 1) {
        const Shape shape = shape_of(b);
        double* out = sides.data();
        walk<1>(shape, {cells_in(b, shape)}, [&](const auto& at) { *out++ = library_double(double_at(at[0])); });
        return sides;
    }
    for (Py_ssize_t i = 0; i < count; ++i) sides[i] = library_double(to_double(element_at(b, i), "b"));
    return sides;
}

char* const* row_names(NameBuffer& names, PyObject* name, Py_ssize_t count) {
    if (!name || is_empty(name)) return nullptr;
    if (PyUnicode_Check(name)) {
        names.add_indexed(name, &count, 1);
        return names.pointers();
    }
    for (Py_ssize_t i = 0; i < count; ++i) names.add(bytes_to_string(string_to_bytes(element_at(name, i))));
    return names.pointers();
}

py::object Model_addMConstr(Model& self, Args args) {
    const auto [matrix, x, sense, b, name] = kAddMConstr.parse(args);
    const Shape shape = matrix_shape(matrix);
    if (shape.ndim != 2) {
        PyErr_Format(PyExc_ValueError, "'A' must have 2 dimensions, not %d", shape.ndim);
        throw PythonError{};
    }
    const Py_ssize_t count = shape.dims[0];
    const py::object mvar = matrix_vars(self, x);
    model_setup(self);
    if (!(mvar_shape(mvar) == Shape{shape.dims[1]})) raise_zelvan(-1, "Incompatible no. columns in argument 'A'");
    const std::vector<char> senses = senses_of(sense, count);
    const std::vector<double> sides = sides_of(b, count);
    const SharedRows rows = is_sparse(matrix) ? rows_of_sparse(matrix, false) : rows_of_dense(matrix, false);
    NameBuffer names(true);
    char* const* texts = row_names(names, name, count);
    Vars vars(mvar);
    return add_matrix_rows(self, *rows, vars, senses, sides, texts, Shape{count});
}

// ---- comparisons

// Rows of the cells of a full expression.
py::object add_cells(Model& self, MLinExpr& expr, char sense, char* const* names) {
    const py::object cells = cells_of(expr);
    const Shape shape = shape_of(cells);
    model_setup(self);
    const auto count = static_cast<int>(shape.size());
    const py::object handles = new_handles(self, Kind::kConstr, count);
    const py::object array = array_of_list(handles, shape);
    if (count == 0) return new_handle_array(MConstr_Type, array);
    require_member(self, PyList_GET_ITEM(handles.ptr(), 0));
    std::vector<int> begin, index;
    std::vector<double> value, rhs;
    walk<1>(shape, {cells_in(cells, shape)}, [&](const auto& at) {
        const py::object cell = linexpr_at(at[0]);
        linexpr_flatten(as_linexpr(cell));
        LibraryTerms terms;
        append_terms(self, as_linexpr(cell), 1.0, terms);
        terms.clean();
        begin.push_back(static_cast<int>(index.size()));
        index.insert(index.end(), terms.ind(), terms.ind() + terms.size());
        value.insert(value.end(), terms.val(), terms.val() + terms.size());
        rhs.push_back(-as_linexpr(cell)->constant);
        if (index.size() > INT_MAX) raise(PyExc_OverflowError, "too many entries for one array of constraints");
    });
    const std::vector<char> senses(count, sense);
    check(ZVNaddconstrs(model_pointer(self), count, static_cast<int>(index.size()), begin.data(), index.data(),
                        value.data(), senses.data(), rhs.data(), names),
          as_object(self));
    list_handles(self, Kind::kConstr, handles);
    return new_handle_array(MConstr_Type, array);
}

}  // namespace

py::object add_matrix_constr(Model& self, py::handle mlinexpr, char sense, py::handle name) {
    MLinExpr& expr = as_mlinexpr(mlinexpr);
    const Shape shape = mlinexpr_shape(expr);
    NameBuffer names(true);
    char* const* texts = cell_names(names, name, shape);
    if (!expr.compact || expr.compact->blocks.empty())
        return add_cells(self, as_mlinexpr(full_of(mlinexpr)), sense, texts);
    const Block block = single_block(*expr.compact);
    const auto size = static_cast<std::size_t>(shape.size());
    std::vector<double> rhs(size, -expr.compact->constants.fill);
    if (const double* constants = expr.compact->constants.data())
        for (std::size_t i = 0; i < size; ++i) rhs[i] = -constants[i];
    std::transform(rhs.begin(), rhs.end(), rhs.begin(), library_double);
    return add_matrix_rows(self, *block.rows, *block.vars, std::vector<char>(size, sense), rhs, texts, shape);
}

namespace {

// ---- reading

py::object Model_getA(Model& self) {
    model_update(self);
    const int rows = count_of(self, "NumConstrs"), columns = count_of(self, "NumVars"),
              entries = count_of(self, "NumNZs");
    const py::object begin = new_array({rows + 1}, CellType::kInt32), index = new_array({entries}, CellType::kInt32),
                     value = new_array({entries}, CellType::kDouble);
    std::fill_n(data_of<int>(begin), rows + 1, 0);
    if (entries > 0) {
        int written = 0;
        check(ZVNgetconstrs(model_pointer(self), &written, data_of<int>(begin), data_of<int>(index),
                            data_of<double>(value), 0, rows),
              as_object(self));
        data_of<int>(begin)[rows] = written;
    }
    const py::object make = py::module_::import("scipy.sparse").attr("csr_matrix");
    return make(py::make_tuple(value, index, begin), py::arg("shape") = py::make_tuple(rows, columns),
                py::arg("copy") = false);
}

py::object Model_getQ(Model& self) {
    const int columns = count_of(self, "NumVars");
    int size = count_of(self, "NumQNZs");
    const py::object row = new_array({size}, CellType::kInt32), col = new_array({size}, CellType::kInt32),
                     value = new_array({size}, CellType::kDouble);
    check(ZVNgetq(model_pointer(self), &size, data_of<int>(row), data_of<int>(col), data_of<double>(value)),
          as_object(self));
    const py::object make = py::module_::import("scipy.sparse").attr("coo_matrix");
    return make(py::make_tuple(value, py::make_tuple(row, col)), py::arg("shape") = py::make_tuple(columns, columns));
}

py::object Model_nd_indexed_names(py::handle, Args args) {
    static const Signature<2> kSignature{"_nd_indexed_names", 2, {Name("prefix"), Name("shape")}};
    const auto [prefix, lengths] = kSignature.parse(args);
    const Shape shape = shape_argument(steal(PySequence_Tuple(lengths)));
    NameBuffer names(true);
    names.add_indexed(prefix, shape.dims, shape.ndim);
    py::list list;
    for (const char* text : names.texts()) list.append(to_str(text));
    return list;
}

py::object Model_createX(Model& self, py::handle x) { return matrix_vars(self, x); }

}  // namespace

PyMethodDef model_matrix_methods[] = {
    {"addMVar", method<Model_addMVar>, kKeywords,
     "addMVar($self, shape, lb=None, ub=None, obj=None, vtype=None, name=None)\n--\n\n"
     "Add an array of variables and return its MVar.\n\n"
     "shape: an int or a tuple. lb, ub, obj, vtype: one value or an array that broadcasts to the shape; None for 0,\n"
     "infinity, 0 and ZVN.CONTINUOUS. name: a common prefix ('x' names 'x[0,1]'), or texts of exactly the shape.\n"
     "Raises ValueError for values that don't fit the shape; nothing is added then."},
    {"addMConstr", method<Model_addMConstr>, kKeywords,
     "addMConstr($self, A, x, sense, b, name='')\n--\n\n"
     "Add the rows A x (sense) b and return their MConstr.\n\n"
     "A: an ndarray or sparse matrix of two dimensions. x: an MVar, a list of Var, or None for all variables. sense:\n"
     "one letter, or one for each row. b: one number for each row. name: a prefix ('c' names 'c[0]'), or one text for\n"
     "each row. Raises ZelvanError for lengths that differ and variables that aren't in the model; nothing is added\n"
     "then."},
    {"getA", method<Model_getA>, METH_NOARGS,
     "getA($self)\n--\n\nThe matrix of the linear constraints as a csr_matrix, after an update()."},
    {"getQ", method<Model_getQ>, METH_NOARGS,
     "getQ($self)\n--\n\nThe quadratic objective terms as of the last update as a square coo_matrix."},
    {"_nd_indexed_names", method<Model_nd_indexed_names>, kKeywords | METH_STATIC,
     "_nd_indexed_names(prefix, shape)\n--\n\n"
     "List of the names of the cells of an array: prefix[0,0], prefix[0,1], ...; [prefix] without dimensions."},
    {"_createX", method<Model_createX>, METH_O,
     "_createX($self, x, /)\n--\n\nThe MVar of an MVar, a list of Var, or None for all variables."},
    {},
};

}  // namespace zelvanpy
