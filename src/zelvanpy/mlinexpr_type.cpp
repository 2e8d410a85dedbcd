// The type MLinExpr: life, operators, methods.

#include <cstddef>

#include "exception.h"
#include "linexpr_build.h"
#include "mlinexpr_build.h"
#include "mlinexpr_items.h"
#include "mlinexpr_ops.h"
#include "mvar.h"
#include "pyargs.h"
#include "pyiter.h"
#include "pynumber.h"
#include "pytype.h"

namespace zelvanpy {

namespace {

PyTypeObject* as_type(py::handle cls) { return reinterpret_cast<PyTypeObject*>(cls.ptr()); }

// --- the constructor and the parts

void require(bool condition, const char* text) {
    if (!condition) raise(PyExc_AssertionError, text);
}

bool is_csr_matrix(py::handle object) {
    static const Name kClass("csr_matrix");
    if (!is_sparse(object)) return false;
    const py::object module = steal(PyImport_ImportModule("scipy.sparse"));
    return checked(PyObject_IsInstance(object.ptr(), steal(PyObject_GetAttr(module.ptr(), kClass.get())).ptr()));
}

Block block_of(py::handle part) {
    require(PyTuple_Check(part.ptr()) && PyTuple_GET_SIZE(part.ptr()) == 2, "a part must be a tuple (A, x)");
    const py::handle matrix = PyTuple_GET_ITEM(part.ptr(), 0), x = PyTuple_GET_ITEM(part.ptr(), 1);
    require(is_csr_matrix(matrix), "A must be a csr_matrix");
    require(has_cells(matrix.attr("data"), CellType::kDouble), "A must have data of type float64");
    require(is_mvar(x), "x must be an MVar");
    Block block{rows_of_sparse(matrix, false), std::make_shared<Vars>(borrow(x))};
    require(mvar_shape(x) == Shape{block.rows->num_cols}, "x must have the shape (A.shape[1],)");
    return block;
}

void set_form(MLinExpr& self, std::unique_ptr<CompactForm> form, py::object cells) {
    const std::unique_ptr<CompactForm> old(std::exchange(self.compact, form.release()));
    const std::unique_ptr<ScaledVars> old_scaled(std::exchange(self.scaled, nullptr));
    const py::object old_cells = py::reinterpret_steal<py::object>(std::exchange(self.learr, cells.release().ptr()));
}

void MLinExpr_init(MLinExpr& self, PyObject* args, PyObject* kwargs) {
    static const Signature<3> kInit{"MLinExpr", 0, {Name("wraponly"), Name("matmulparts"), Name("b")}};
    const auto [cells, parts, b] = kInit.parse(args, kwargs);
    if (cells && cells != Py_None) {
        require(is_ndarray(cells) && has_cells(cells, CellType::kObject), "wraponly must be an ndarray of objects");
        require((!parts || parts == Py_None) && (!b || b == Py_None), "wraponly excludes matmulparts and b");
        return set_form(self, nullptr, borrow(cells));
    }
    require(parts && parts != Py_None && b && b != Py_None, "matmulparts and b are both required");
    require(is_ndarray(b) && has_cells(b, CellType::kDouble) && is_contiguous(b), "b must be an ndarray of float64");
    auto form = std::make_unique<CompactForm>(CompactForm{Constants(borrow(b)), {}});
    require(allows_compact(form->constants.shape), "b must have at most one dimension longer than 1");
    for_each(parts, [&](const py::object& part) { form->blocks.push_back(block_of(part)); });
    const Py_intptr_t size = form->constants.shape.size();
    require(size > 0 || form->blocks.empty(), "an expression of size 0 has no parts");
    for (const Block& block : form->blocks) require(block.rows->num_rows == size, "A must have b.size rows");
    set_form(self, std::move(form), {});
}

void MLinExpr_add_matmul_part(MLinExpr& self, Args args) {
    static const Signature<2> kSignature{"_add_matmul_part", 2, {Name("A"), Name("x")}};
    const auto [matrix, x] = kSignature.parse(args);
    CompactForm& form = compact_of(self);
    require(is_mvar(x) && mvar_shape(x).ndim == 1, "x must be an MVar of one dimension");
    const Shape shape = matrix_shape(matrix);
    require(shape.ndim == 2 && shape.dims[0] == form.constants.shape.size() && shape.dims[1] == mvar_shape(x).dims[0] &&
                form.constants.shape.size() > 0,
            "A must have a row for each cell and a column for each variable");
    SharedRows rows = is_sparse(matrix) ? rows_of_sparse(matrix, false) : rows_of_dense(matrix, false);
    form.blocks.push_back({std::move(rows), std::make_shared<Vars>(borrow(x))});
}

void MLinExpr_concat_matmulparts(MLinExpr& self) { compact_of(self).join_parts(); }

// The blocks of a part as one that no other expression shares, for someone who may change it.
Block exported_block(CompactForm& form, std::size_t first, std::size_t num) {
    Block joined = joined_blocks(form.blocks.data() + first, num);
    const bool is_same = joined.rows == form.blocks[first].rows;
    const long owners = joined.rows.use_count() - joined.rows->exports - (is_same ? 1 : 0);
    if (owners > 1) joined.rows = copy_rows(*joined.rows);
    return joined;
}

py::object part_tuple(const Block& block) { return py::make_tuple(csr_matrix_over(block.rows), block.vars->mvar()); }

py::object MLinExpr_matmulparts(MLinExpr& self) {
    if (!self.compact) return none();
    CompactForm& form = *self.compact;
    std::vector<Block> parts;
    for (std::size_t first = 0; first < form.blocks.size();) {
        std::size_t end = first + 1;
        while (end < form.blocks.size() && !form.blocks[end].opens_part) ++end;
        parts.push_back(exported_block(form, first, end - first));
        first = end;
    }
    form.blocks = parts;
    py::list list;
    for (const Block& part : parts) list.append(part_tuple(part));
    return list;
}

py::object MLinExpr_const(MLinExpr& self) { return self.compact ? self.compact->constants.stored() : none(); }
py::object MLinExpr_learr(MLinExpr& self) { return self.learr || self.scaled ? cells_of(self) : none(); }
py::object MLinExpr_is_compact(MLinExpr& self) { return boolean(self.compact); }
PyObject* MLinExpr_leading_adim(MLinExpr& self) { return PyLong_FromSsize_t(compact_of(self).constants.shape.size()); }

py::object MLinExpr_extract_Axb(MLinExpr& self) {
    CompactForm& form = compact_of(self);
    if (form.blocks.empty()) return py::make_tuple(py::none(), py::none(), form.constants.stored());
    form.join_parts();
    const py::list parts = MLinExpr_matmulparts(self);
    const py::tuple part = parts[0];
    return py::make_tuple(part[0], part[1], form.constants.stored());
}

// --- forms

py::object MLinExpr_to_full(MLinExpr& self) { return mlinexpr_to_full(self); }
void MLinExpr_convert_to_full(MLinExpr& self) { mlinexpr_convert_to_full(self); }
py::object MLinExpr_copy(MLinExpr& self) { return mlinexpr_copy(self); }
py::object MLinExpr_copy_full(MLinExpr& self) {
    mlinexpr_convert_to_full(self);
    return wrap_cells(copied_cells(cells_of(self)));
}
py::object MLinExpr_copy_compact(MLinExpr& self) {
    CompactForm& form = compact_of(self);
    form.join_parts();
    return new_mlinexpr({form.constants.copy(), shared_blocks(form)});
}

py::object MLinExpr_allows_compact(py::handle, Args args) {
    static const Signature<1> kSignature{"_allows_compact", 1, {Name("shape")}};
    const auto [lengths] = kSignature.parse(args);
    const py::object tuple = steal(PySequence_Tuple(lengths));
    Shape shape;
    if (PyTuple_GET_SIZE(tuple.ptr()) > 2) return boolean(false);
    for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(tuple.ptr()); ++i)
        shape.append(list_index(PyTuple_GET_ITEM(tuple.ptr(), i)));
    return boolean(allows_compact(shape));
}

// --- class methods that construct

py::object MLinExpr_zeros(py::handle cls, Args args) {
    static const Signature<1> kSignature{"zeros", 1, {Name("shape")}};
    const auto [shape] = kSignature.parse(args);
    return mlinexpr_zeros(normalized_shape(shape), as_type(cls));
}

py::object MLinExpr_zeros_full(py::handle cls, Args args) {
    static const Signature<1> kSignature{"_zeros_full", 1, {Name("shape")}};
    const auto [shape] = kSignature.parse(args);
    return mlinexpr_zeros_full(normalized_shape(shape), as_type(cls));
}

void require_mvar(py::handle object) {
    if (is_mvar(object)) return;
    PyErr_Format(PyExc_TypeError, "an MVar is required, not %.200s", Py_TYPE(object.ptr())->tp_name);
    throw PythonError{};
}

py::object MLinExpr_from_mvar(py::handle cls, Args args) {
    static const Signature<2> kSignature{"_from_mvar", 1, {Name("fromobj"), Name("force_full")}};
    const auto [mvar, force_full] = kSignature.parse(args);
    require_mvar(mvar);
    return mlinexpr_from_mvar(mvar, force_full && checked(PyObject_IsTrue(force_full)), as_type(cls));
}

py::object MLinExpr_from_mvar_full(py::handle cls, Args args) {
    static const Signature<1> kSignature{"_from_mvar_full", 1, {Name("fromobj")}};
    const auto [mvar] = kSignature.parse(args);
    require_mvar(mvar);
    return mlinexpr_from_mvar_full(mvar, as_type(cls));
}

py::object MLinExpr_from_mvar_compact(py::handle cls, Args args) {
    static const Signature<1> kSignature{"_from_mvar_compact", 1, {Name("x")}};
    const auto [mvar] = kSignature.parse(args);
    require_mvar(mvar);
    require(allows_compact(mvar_shape(mvar)), "the MVar must have at most one dimension longer than 1");
    return mlinexpr_from_mvar(mvar, false, as_type(cls));
}

py::object MLinExpr_from_var(py::handle cls, Args args) {
    static const Signature<1> kSignature{"_from_var", 1, {Name("fromobj")}};
    const auto [var] = kSignature.parse(args);
    if (!is_var(var)) raise(PyExc_Exception, "Wrong type");
    return mlinexpr_from_var(var, as_type(cls));
}

py::object MLinExpr_from_linexpr(py::handle cls, Args args) {
    static const Signature<1> kSignature{"_from_linexpr", 1, {Name("fromobj")}};
    const auto [linexpr] = kSignature.parse(args);
    if (!is_linexpr(linexpr)) raise(PyExc_Exception, "Wrong type");
    return mlinexpr_from_linexpr(linexpr, as_type(cls));
}

py::object MLinExpr_from_linexprs(py::handle cls, Args args) {
    static const Name kArray("array");
    static const Signature<1> kSignature{"_from_linexprs", 1, {Name("les")}};
    const auto [les] = kSignature.parse(args);
    const py::object list = steal(PySequence_List(les));
    py::object cells = object_copy(numpy_function(kArray)(list, "O"));
    const Shape shape = shape_of(cells);
    walk<1>(shape, {cells_in(cells, shape)}, [](const auto& at) {
        const py::object object = object_at(at[0]);
        set_object(at[0], is_mlinexpr(object) ? mlinexpr_item(as_mlinexpr(object)) : owned(linexpr_from(object)));
    });
    return wrap_cells(std::move(cells), as_type(cls));
}

py::object MLinExpr_from_affine(py::handle cls, Args args) {
    static const Signature<4> kSignature{
        "_from_compact_affine_expr", 0, {Name("x_left"), Name("A"), Name("x_right"), Name("b")}};
    std::array<PyObject*, 4> given = kSignature.parse(args);
    for (PyObject*& argument : given)
        if (!argument) argument = Py_None;
    return mlinexpr_from_affine(given[0], given[1], given[2], given[3], as_type(cls));
}

py::object MLinExpr_from_matmul_right(py::handle cls, Args args) {
    static const Signature<2> kSignature{"_from_matmul_right", 2, {Name("A"), Name("x")}};
    const auto [matrix, x] = kSignature.parse(args);
    return mlinexpr_from_matmul_right(matrix, x, as_type(cls));
}

py::object MLinExpr_from_matmul_left(py::handle cls, Args args) {
    static const Signature<2> kSignature{"_from_matmul_left", 2, {Name("x"), Name("A")}};
    const auto [x, matrix] = kSignature.parse(args);
    return mlinexpr_from_matmul_left(x, matrix, as_type(cls));
}

// --- operators

py::object MLinExpr_add(py::handle left, py::handle right) {
    return is_mlinexpr(left) ? mlinexpr_plus(as_mlinexpr(left), right) : mlinexpr_plus(as_mlinexpr(right), left);
}
py::object MLinExpr_subtract(py::handle left, py::handle right) {
    return steal(PyNumber_Add((is_mlinexpr(left) ? borrow(left) : negated(right)).ptr(),
                              (is_mlinexpr(left) ? negated(right) : borrow(left)).ptr()));
}
py::object MLinExpr_multiply(py::handle left, py::handle right) {
    return is_mlinexpr(left) ? mlinexpr_times(as_mlinexpr(left), right) : mlinexpr_times(as_mlinexpr(right), left);
}
py::object MLinExpr_matmul(py::handle left, py::handle right) {
    return is_mlinexpr(left) ? mlinexpr_matmul(as_mlinexpr(left), right) : mlinexpr_rmatmul(as_mlinexpr(right), left);
}
py::object MLinExpr_divide(py::handle left, py::handle right) {
    if (!is_mlinexpr(left)) return borrow(Py_NotImplemented);
    const py::object factor = reciprocal(right);
    return factor.ptr() == Py_NotImplemented ? factor : mlinexpr_times(as_mlinexpr(left), factor);
}
py::object MLinExpr_iadd(py::handle self, py::handle other) { return mlinexpr_iplus(as_mlinexpr(self), other); }
py::object MLinExpr_isub(py::handle self, py::handle other) {
    return steal(PyNumber_InPlaceAdd(self.ptr(), negated(other).ptr()));
}
py::object MLinExpr_imul(py::handle self, py::handle other) { return mlinexpr_itimes(as_mlinexpr(self), other); }
py::object MLinExpr_idiv(py::handle self, py::handle other) {
    const py::object factor = reciprocal(other);
    return factor.ptr() == Py_NotImplemented ? factor : mlinexpr_itimes(as_mlinexpr(self), factor);
}
py::object MLinExpr_negative(py::handle self) { return mlinexpr_times(as_mlinexpr(self), py::float_(-1.0)); }
py::object MLinExpr_positive(MLinExpr& self) { return mlinexpr_copy(self); }
PyObject* MLinExpr_compare(py::handle self, py::handle other, int op) { return compare_matrix(self, other, op, 0); }

// --- items and services

py::object MLinExpr_getitem(MLinExpr& self, py::handle index) { return mlinexpr_getitem(self, index); }
py::object MLinExpr_at(MLinExpr& self, Py_ssize_t i) { return mlinexpr_getitem(self, steal(PyLong_FromSsize_t(i))); }
void MLinExpr_setitem(MLinExpr& self, py::handle index, py::handle value) {
    if (!value) raise(PyExc_TypeError, "'MLinExpr' object doesn't support item deletion");
    mlinexpr_setitem(self, index, value);
}
py::object MLinExpr_sum(MLinExpr& self, Args args) {
    static const Signature<2> kSum{"sum", 0, {Name("axis"), Name("out")}};
    const auto [axis, out] = kSum.parse(args);
    if (out && out != Py_None) raise(PyExc_TypeError, "sum() can't put its result into an array");
    return mlinexpr_sum(self, axis ? axis : Py_None);
}
py::object MLinExpr_item(MLinExpr& self) { return mlinexpr_item(self); }
void MLinExpr_clear(MLinExpr& self) { mlinexpr_clear(self); }
void MLinExpr_flatten(MLinExpr& self) { mlinexpr_flatten(self); }
void MLinExpr_normalize(MLinExpr& self) { mlinexpr_normalize_cells(self); }
py::object MLinExpr_getConstant(MLinExpr& self) { return mlinexpr_constants(self); }
py::object MLinExpr_getValue(MLinExpr& self) { return mlinexpr_values(self); }
py::object MLinExpr_repr(MLinExpr& self) { return mlinexpr_repr(self); }
py::object MLinExpr_shape(MLinExpr& self) { return shape_tuple(mlinexpr_shape(self)); }
PyObject* MLinExpr_ndim(MLinExpr& self) { return PyLong_FromLong(mlinexpr_shape(self).ndim); }
PyObject* MLinExpr_size(MLinExpr& self) { return PyLong_FromSsize_t(mlinexpr_shape(self).size()); }

// --- life

int MLinExpr_traverse(PyObject* object, visitproc visit, void* arg) {
    const MLinExpr& self = as_mlinexpr(object);
    Py_VISIT(self.learr);
    Py_VISIT(self.dict);
    return visit_type(object, visit, arg);
}

int MLinExpr_tp_clear(PyObject* object) {
    Py_CLEAR(as_mlinexpr(object).dict);
    return 0;
}

void MLinExpr_dealloc(PyObject* object) {
    MLinExpr& self = as_mlinexpr(object);
    PyObject_GC_UnTrack(object);
    if (self.weakrefs) PyObject_ClearWeakRefs(object);
    Py_CLEAR(self.dict);
    Py_CLEAR(self.learr);
    delete std::exchange(self.compact, nullptr);
    delete std::exchange(self.scaled, nullptr);
    free_instance(object, MLinExpr_Type);
}

PyGetSetDef properties[] = {
    {"shape", getter_of<MLinExpr_shape>, nullptr, "Lengths of the dimensions (tuple of int).", nullptr},
    {"ndim", getter_of<MLinExpr_ndim>, nullptr, "Number of dimensions (int).", nullptr},
    {"size", getter_of<MLinExpr_size>, nullptr, "Number of cells (int).", nullptr},
    {"_learr", getter_of<MLinExpr_learr>, nullptr, "ndarray of LinExpr of the full form, None in compact form.",
     nullptr},
    {"_matmulparts", getter_of<MLinExpr_matmulparts>, nullptr,
     "New list of tuples (csr_matrix, MVar) of the compact form, whose memory is the expression's; None in full form.",
     nullptr},
    {"_const", getter_of<MLinExpr_const>, nullptr, "ndarray of the constants of the compact form, None in full form.",
     nullptr},
    {"_is_compact", getter_of<MLinExpr_is_compact>, nullptr, "Whether the form is the compact one (bool).", nullptr},
    {"_leading_adim", getter_of<MLinExpr_leading_adim>, nullptr, "Number of rows of the matrices (int).", nullptr},
    dict_property(),
    {},
};

PyMemberDef members[] = {dict_at(offsetof(MLinExpr, dict)), weakrefs_at(offsetof(MLinExpr, weakrefs)), {}};

PyMethodDef methods[] = {
    {"zeros", method<MLinExpr_zeros>, kKeywords | METH_CLASS,
     "zeros($type, shape)\n--\n\nMLinExpr of the given shape (int or tuple) with the value 0 in each cell."},
    {"_zeros_full", method<MLinExpr_zeros_full>, kKeywords | METH_CLASS,
     "_zeros_full($type, shape)\n--\n\nThe same in full form."},
    {"_from_mvar", method<MLinExpr_from_mvar>, kKeywords | METH_CLASS,
     "_from_mvar($type, fromobj, force_full=False)\n--\n\nMLinExpr of the variables of an MVar."},
    {"_from_mvar_full", method<MLinExpr_from_mvar_full>, kKeywords | METH_CLASS,
     "_from_mvar_full($type, fromobj)\n--\n\nThe same in full form."},
    {"_from_mvar_compact", method<MLinExpr_from_mvar_compact>, kKeywords | METH_CLASS,
     "_from_mvar_compact($type, x)\n--\n\nThe same in compact form."},
    {"_from_var", method<MLinExpr_from_var>, kKeywords | METH_CLASS,
     "_from_var($type, fromobj)\n--\n\nMLinExpr without dimensions of a Var."},
    {"_from_linexpr", method<MLinExpr_from_linexpr>, kKeywords | METH_CLASS,
     "_from_linexpr($type, fromobj)\n--\n\nMLinExpr without dimensions of a copy of a LinExpr."},
    {"_from_linexprs", method<MLinExpr_from_linexprs>, kKeywords | METH_CLASS,
     "_from_linexprs($type, les)\n--\n\nMLinExpr of copies of the expressions of an iterable."},
    {"_from_compact_affine_expr", method<MLinExpr_from_affine>, kKeywords | METH_CLASS,
     "_from_compact_affine_expr($type, x_left=None, A=None, x_right=None, b=None)\n--\n\n"
     "MLinExpr in compact form of x_left @ A + b, A @ x_right + b, or b. Raises ValueError where shapes don't fit."},
    {"_from_matmul_right", method<MLinExpr_from_matmul_right>, kKeywords | METH_CLASS,
     "_from_matmul_right($type, A, x)\n--\n\nMLinExpr of A @ x, for an ndarray or sparse matrix and an MVar."},
    {"_from_matmul_left", method<MLinExpr_from_matmul_left>, kKeywords | METH_CLASS,
     "_from_matmul_left($type, x, A)\n--\n\nMLinExpr of x @ A."},
    {"_allows_compact", method<MLinExpr_allows_compact>, kKeywords | METH_STATIC,
     "_allows_compact(shape)\n--\n\nWhether the compact form can have the shape (bool)."},
    {"_extract_Axb", method<MLinExpr_extract_Axb>, METH_NOARGS,
     "_extract_Axb($self)\n--\n\nTuple (A, x, constants) of a compact expression with its parts made one."},
    {"_concat_matmulparts", method<MLinExpr_concat_matmulparts>, METH_NOARGS,
     "_concat_matmulparts($self)\n--\n\nMake the parts of a compact expression one."},
    {"_add_matmul_part", method<MLinExpr_add_matmul_part>, kKeywords,
     "_add_matmul_part($self, A, x)\n--\n\nAppend a part, sharing the arrays of a csr_matrix of float64."},
    {"_to_full", method<MLinExpr_to_full>, METH_NOARGS, "_to_full($self)\n--\n\nA compact expression in full form."},
    {"_convert_to_full", method<MLinExpr_convert_to_full>, METH_NOARGS,
     "_convert_to_full($self)\n--\n\nTurn to full form."},
    {"copy", method<MLinExpr_copy>, METH_NOARGS, "copy($self)\n--\n\nAn independent copy."},
    {"_copy_compact", method<MLinExpr_copy_compact>, METH_NOARGS,
     "_copy_compact($self)\n--\n\nAn independent copy of a compact expression."},
    {"_copy_full", method<MLinExpr_copy_full>, METH_NOARGS,
     "_copy_full($self)\n--\n\nAn independent copy in full form, to which the expression itself is turned."},
    {"sum", method<MLinExpr_sum>, kKeywords,
     "sum($self, axis=None, out=None)\n--\n\n"
     "MLinExpr of the sums over an axis (int), several (tuple) or all; `out` is there for numpy.sum and must be\n"
     "None. Raises ZelvanError for an axis that isn't there."},
    {"item", method<MLinExpr_item>, METH_NOARGS,
     "item($self)\n--\n\nThe only cell as a LinExpr of its own. Raises ValueError for any other size than 1."},
    {"clear", method<MLinExpr_clear>, METH_NOARGS, "clear($self)\n--\n\nSet each cell to 0."},
    {"getConstant", method<MLinExpr_getConstant>, METH_NOARGS,
     "getConstant($self)\n--\n\nConstants of the cells: an ndarray of float64 of this shape."},
    {"getValue", method<MLinExpr_getValue>, METH_NOARGS,
     "getValue($self)\n--\n\n"
     "Values of the cells in the current solution: an ndarray of float64 of this shape. Raises what reading X raises\n"
     "where there is none."},
    {"_flatten", method<MLinExpr_flatten>, METH_NOARGS,
     "_flatten($self)\n--\n\nFlatten each cell of a full expression."},
    {"_normalize", method<MLinExpr_normalize>, METH_NOARGS,
     "_normalize($self)\n--\n\nMerge the terms of equal variables in each cell of a full expression."},
    {},
};

const char kDoc[] =
    "MLinExpr(wraponly=None, matmulparts=None, b=None)\n--\n\n"
    "Array of linear expressions with numpy's shapes, indices and broadcasting.\n\n"
    "Made by `A @ x`, `x @ A`, `2 * x`, `x + y - b`, `x.sum(axis=0)` of an MVar, and by MLinExpr.zeros(shape).\n"
    "Vectors of expressions are kept as sparse matrices times variables for as long as that goes; indexing and\n"
    "assignment turn them into one LinExpr for each cell. A slice shares its cells, as with numpy.\n"
    "The constructor is for the module itself.";

}  // namespace

void init_mlinexpr_type(py::module_& module) {
    PyType_Slot slots[] = {
        {Py_tp_doc, const_cast<char*>(kDoc)},
        {Py_tp_new, reinterpret_cast<void*>(PyType_GenericNew)},
        {Py_tp_init, slot<MLinExpr_init>()},
        {Py_tp_dealloc, reinterpret_cast<void*>(MLinExpr_dealloc)},
        {Py_tp_traverse, reinterpret_cast<void*>(MLinExpr_traverse)},
        {Py_tp_clear, reinterpret_cast<void*>(MLinExpr_tp_clear)},
        {Py_tp_repr, slot<MLinExpr_repr>()},
        {Py_tp_richcompare, slot<MLinExpr_compare>()},
        {Py_mp_subscript, slot<MLinExpr_getitem>()},
        {Py_mp_ass_subscript, slot<MLinExpr_setitem>()},
        {Py_sq_item, slot<MLinExpr_at>()},
        {Py_nb_add, slot<MLinExpr_add>()},
        {Py_nb_subtract, slot<MLinExpr_subtract>()},
        {Py_nb_multiply, slot<MLinExpr_multiply>()},
        {Py_nb_matrix_multiply, slot<MLinExpr_matmul>()},
        {Py_nb_true_divide, slot<MLinExpr_divide>()},
        {Py_nb_inplace_add, slot<MLinExpr_iadd>()},
        {Py_nb_inplace_subtract, slot<MLinExpr_isub>()},
        {Py_nb_inplace_multiply, slot<MLinExpr_imul>()},
        {Py_nb_inplace_true_divide, slot<MLinExpr_idiv>()},
        {Py_nb_negative, slot<MLinExpr_negative>()},
        {Py_nb_positive, slot<MLinExpr_positive>()},
        {Py_tp_methods, methods},
        {Py_tp_members, members},
        {Py_tp_getset, properties},
        {0, nullptr},
    };
    PyType_Spec spec{"zelvanpy.MLinExpr", sizeof(MLinExpr), 0,
                     Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC, slots};
    MLinExpr_Type = make_type(module, spec);
    auto* type = reinterpret_cast<PyObject*>(MLinExpr_Type);
    checked(PyObject_SetAttrString(type, "__array_priority__", py::int_(100).ptr()));
    checked(PyObject_SetAttrString(type, "_keep_compact", py::int_(1).ptr()));
    checked(PyObject_DelAttrString(type, "__rtruediv__"));
}

}  // namespace zelvanpy
