// The type MQuadExpr: life, operators, methods.

#include <cstddef>

#include "exception.h"
#include "handle_array.h"
#include "mlinexpr_build.h"
#include "mlinexpr_items.h"
#include "mlinexpr_ops.h"
#include "mquadexpr_ops.h"
#include "pyargs.h"
#include "pyiter.h"
#include "pynumber.h"
#include "pytype.h"

namespace zelvanpy {

namespace {

PyTypeObject* as_type(py::handle cls) { return reinterpret_cast<PyTypeObject*>(cls.ptr()); }

void require(bool condition, const char* text) {
    if (!condition) raise(PyExc_AssertionError, text);
}

Shape vector_shape(py::handle mvar) {
    require(is_mvar(mvar), "x and y must be MVars");
    return shape_of(array_of(mvar));
}

// --- the constructor and the parts

QuadPart quad_part(py::handle left, py::handle matrix, py::handle right) {
    QuadPart part{std::make_shared<Vars>(borrow(left)),
                  {is_sparse(matrix) ? rows_of_sparse(matrix, true) : rows_of_dense(matrix, false),
                   std::make_shared<Vars>(borrow(right))}};
    require(vector_shape(left) == Shape{part.block.rows->num_rows} &&
                vector_shape(right) == Shape{part.block.rows->num_cols},
            "x and y must have the shapes (Q.shape[0],) and (Q.shape[1],)");
    return part;
}

void set_form(MQuadExpr& self, std::unique_ptr<std::vector<QuadPart>> parts, py::object cells, py::object linear) {
    const std::unique_ptr<std::vector<QuadPart>> old(std::exchange(self.parts, parts.release()));
    const py::object old_cells = py::reinterpret_steal<py::object>(std::exchange(self.qearr, cells.release().ptr()));
    const py::object old_linear = py::reinterpret_steal<py::object>(std::exchange(self.ndle, linear.release().ptr()));
}

void MQuadExpr_init(MQuadExpr& self, PyObject* args, PyObject* kwargs) {
    static const Signature<3> kInit{"MQuadExpr", 0, {Name("qearr"), Name("quadparts"), Name("ndle")}};
    const auto [cells, parts, linear] = kInit.parse(args, kwargs);
    require(linear && is_mlinexpr(linear), "ndle must be an MLinExpr");
    const Shape shape = mlinexpr_shape(as_mlinexpr(linear));
    if (cells && cells != Py_None) {
        require(!parts || parts == Py_None, "qearr excludes quadparts");
        require(is_ndarray(cells) && has_cells(cells, CellType::kObject) && shape_of(cells) == shape,
                "qearr must be an ndarray of objects with the shape of ndle");
        return set_form(self, nullptr, borrow(cells), borrow(linear));
    }
    require(parts && parts != Py_None, "qearr or quadparts is required");
    require(mquadexpr_allows_compact(shape), "ndle must have at most one cell");
    auto form = std::make_unique<std::vector<QuadPart>>();
    for_each(parts, [&](const py::object& part) {
        require(PyTuple_Check(part.ptr()) && PyTuple_GET_SIZE(part.ptr()) == 3, "a part must be a tuple (x, Q, y)");
        PyObject* const* fields = &PyTuple_GET_ITEM(part.ptr(), 0);
        form->push_back(quad_part(fields[0], fields[1], fields[2]));
    });
    require(shape.size() > 0 || form->empty(), "an expression of size 0 has no parts");
    set_form(self, std::move(form), {}, borrow(linear));
}

void MQuadExpr_add_quadpart(MQuadExpr& self, Args args) {
    static const Signature<3> kSignature{"_add_quadpart", 3, {Name("x"), Name("Q"), Name("y")}};
    const auto [left, matrix, right] = kSignature.parse(args);
    std::vector<QuadPart>& parts = parts_of(self);
    require(mquadexpr_shape(self).size() > 0, "an expression of size 0 has no parts");
    parts.push_back(quad_part(left, matrix, right));
}

void MQuadExpr_concat_quadparts(MQuadExpr& self) { join_quadparts(parts_of(self)); }

// coo_matrix of the stored rows
py::object coo_matrix_of(const SharedRows& rows) {
    static const Name kTocoo("tocoo");
    const py::object csr = csr_matrix_over(rows);
    return steal(PyObject_CallMethodObjArgs(csr.ptr(), kTocoo.get(), Py_True, nullptr));
}

py::object quadpart_tuple(const QuadPart& part) {
    return py::make_tuple(part.left->mvar(), coo_matrix_of(part.block.rows), part.block.vars->mvar());
}

py::object MQuadExpr_quadparts(MQuadExpr& self) {
    if (!self.parts) return none();
    const std::vector<QuadPart> parts = *self.parts;
    py::list list;
    for (std::size_t first = 0; first < parts.size();) {
        std::size_t end = first + 1;
        while (end < parts.size() && !parts[end].block.opens_part) ++end;
        list.append(quadpart_tuple(joined_quadparts(parts.data() + first, end - first)));
        first = end;
    }
    return list;
}

py::object MQuadExpr_extract_xQy(MQuadExpr& self) {
    std::vector<QuadPart>& parts = parts_of(self);
    if (parts.empty()) return py::make_tuple(py::none(), py::none(), py::none());
    parts = {joined_quadparts(parts.data(), parts.size())};
    return quadpart_tuple(parts.front());
}

py::object MQuadExpr_extract_quadexpr(MQuadExpr& self) { return extracted_quadexpr(self); }
py::object MQuadExpr_ndle(MQuadExpr& self) { return linear_half(self); }
py::object MQuadExpr_qearr(MQuadExpr& self) { return self.qearr ? borrow(self.qearr) : none(); }
py::object MQuadExpr_is_compact(MQuadExpr& self) { return boolean(self.parts); }

// --- forms and construction

py::object MQuadExpr_to_full(MQuadExpr& self) {
    parts_of(self);
    return mquadexpr_to_full(self);
}
void MQuadExpr_convert_to_full(MQuadExpr& self) { mquadexpr_convert_to_full(self); }

py::object MQuadExpr_allows_compact(py::handle, Args args) {
    static const Signature<1> kSignature{"_allows_compact", 1, {Name("shape")}};
    const auto [lengths] = kSignature.parse(args);
    const py::object tuple = steal(PySequence_Tuple(lengths));
    Shape shape;
    if (PyTuple_GET_SIZE(tuple.ptr()) > 2) return boolean(false);
    for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(tuple.ptr()); ++i)
        shape.append(list_index(PyTuple_GET_ITEM(tuple.ptr(), i)));
    return boolean(mquadexpr_allows_compact(shape));
}

py::object MQuadExpr_zeros(py::handle cls, Args args) {
    static const Signature<1> kSignature{"zeros", 1, {Name("shape")}};
    const auto [shape] = kSignature.parse(args);
    return mquadexpr_zeros(normalized_shape(shape), as_type(cls));
}

py::object MQuadExpr_zeros_full(py::handle cls, Args args) {
    static const Signature<1> kSignature{"_zeros_full", 1, {Name("shape")}};
    const auto [shape] = kSignature.parse(args);
    return mquadexpr_zeros_full(normalized_shape(shape), as_type(cls));
}

py::object MQuadExpr_from_mlinexpr(py::handle cls, Args args) {
    static const Signature<2> kSignature{"_from_mlinexpr", 1, {Name("ndle"), Name("force_full")}};
    const auto [linear, force_full] = kSignature.parse(args);
    if (!is_mlinexpr(linear)) raise(PyExc_TypeError, "ndle must be an MLinExpr");
    return mquadexpr_from_mlinexpr(linear, force_full && checked(PyObject_IsTrue(force_full)), as_type(cls));
}

py::object MQuadExpr_from_quad_expr(py::handle cls, Args args) {
    static const Signature<1> kSignature{"_from_quad_expr", 1, {Name("qe")}};
    const auto [quadexpr] = kSignature.parse(args);
    if (!is_quadexpr(quadexpr)) raise(PyExc_TypeError, "qe must be a QuadExpr");
    return mquadexpr_from_quadexpr(quadexpr, as_type(cls));
}

py::object MQuadExpr_from_mvars(py::handle cls, Args args) {
    static const Signature<3> kSignature{
        "_from_mvar_times_mvar", 2, {Name("mvar_left"), Name("mvar_right"), Name("force_full")}};
    const auto [left, right, force_full] = kSignature.parse(args);
    if (!is_mvar(left) || !is_mvar(right)) raise(PyExc_TypeError, "both factors must be MVars");
    return mquadexpr_from_mvars(left, right, force_full && checked(PyObject_IsTrue(force_full)), as_type(cls));
}

// --- operators

// The summand that is no MQuadExpr comes second.
py::object MQuadExpr_add(py::handle left, py::handle right) {
    return is_mquadexpr(left) ? mquadexpr_plus(as_mquadexpr(left), right) : mquadexpr_plus(as_mquadexpr(right), left);
}
py::object MQuadExpr_subtract(py::handle left, py::handle right) {
    return steal(PyNumber_Add((is_mquadexpr(left) ? borrow(left) : negated(right)).ptr(),
                              (is_mquadexpr(left) ? negated(right) : borrow(left)).ptr()));
}
py::object MQuadExpr_multiply(py::handle left, py::handle right) {
    return is_mquadexpr(left) ? mquadexpr_times(as_mquadexpr(left), right) : mquadexpr_times(as_mquadexpr(right), left);
}
py::object MQuadExpr_matmul(py::handle left, py::handle right) {
    return is_mquadexpr(left) ? mquadexpr_matmul(as_mquadexpr(left), right, true)
                              : mquadexpr_matmul(as_mquadexpr(right), left, false);
}
py::object MQuadExpr_divide(py::handle left, py::handle right) {
    if (!is_mquadexpr(left)) return borrow(Py_NotImplemented);
    const py::object factor = reciprocal(right);
    return factor.ptr() == Py_NotImplemented ? factor : mquadexpr_times(as_mquadexpr(left), factor);
}
py::object MQuadExpr_iadd(py::handle self, py::handle other) { return mquadexpr_iplus(as_mquadexpr(self), other); }

// In place also for variables, as the difference of a sum's operands is.
py::object MQuadExpr_isub(py::handle self, py::handle other) {
    return steal(PyNumber_InPlaceAdd(self.ptr(), negated(other).ptr()));
}
py::object MQuadExpr_imul(py::handle self, py::handle other) { return mquadexpr_itimes(as_mquadexpr(self), other); }
py::object MQuadExpr_idiv(py::handle self, py::handle other) {
    const py::object factor = reciprocal(other);
    return factor.ptr() == Py_NotImplemented ? factor : mquadexpr_itimes(as_mquadexpr(self), factor);
}
py::object MQuadExpr_negative(py::handle self) { return mquadexpr_times(as_mquadexpr(self), py::float_(-1.0)); }
py::object MQuadExpr_positive(MQuadExpr& self) { return mquadexpr_copy(self); }
PyObject* MQuadExpr_compare(py::handle self, py::handle other, int op) { return compare_matrix(self, other, op, 0); }

// --- items and services

py::object MQuadExpr_getitem(MQuadExpr& self, py::handle index) { return mquadexpr_getitem(self, index); }
py::object MQuadExpr_at(MQuadExpr& self, Py_ssize_t i) { return mquadexpr_getitem(self, steal(PyLong_FromSsize_t(i))); }
void MQuadExpr_setitem(MQuadExpr& self, py::handle index, py::handle value) {
    if (!value) raise(PyExc_TypeError, "'MQuadExpr' object doesn't support item deletion");
    mquadexpr_setitem(self, index, value);
}
py::object MQuadExpr_sum(MQuadExpr& self, Args args) {
    static const Signature<2> kSum{"sum", 0, {Name("axis"), Name("out")}};
    const auto [axis, out] = kSum.parse(args);
    if (out && out != Py_None) raise(PyExc_TypeError, "sum() can't put its result into an array");
    return mquadexpr_sum(self, axis ? axis : Py_None);
}
py::object MQuadExpr_item(MQuadExpr& self) { return mquadexpr_item(self); }
py::object MQuadExpr_copy(MQuadExpr& self) { return mquadexpr_copy(self); }
void MQuadExpr_clear(MQuadExpr& self) { mquadexpr_clear(self); }
void MQuadExpr_flatten(MQuadExpr& self) { mquadexpr_flatten(self); }
void MQuadExpr_normalize(MQuadExpr& self) { mquadexpr_normalize(self); }
py::object MQuadExpr_getConstant(MQuadExpr& self) { return mlinexpr_constants(as_mlinexpr(linear_half(self))); }
py::object MQuadExpr_getValue(MQuadExpr& self) { return mquadexpr_values(self); }
py::object MQuadExpr_repr(MQuadExpr& self) { return mquadexpr_repr(self); }
py::object MQuadExpr_shape(MQuadExpr& self) { return shape_tuple(mquadexpr_shape(self)); }
PyObject* MQuadExpr_ndim(MQuadExpr& self) { return PyLong_FromLong(mquadexpr_shape(self).ndim); }
PyObject* MQuadExpr_size(MQuadExpr& self) { return PyLong_FromSsize_t(mquadexpr_shape(self).size()); }

// --- life

int MQuadExpr_traverse(PyObject* object, visitproc visit, void* arg) {
    const MQuadExpr& self = as_mquadexpr(object);
    Py_VISIT(self.ndle);
    Py_VISIT(self.qearr);
    Py_VISIT(self.dict);
    return visit_type(object, visit, arg);
}

int MQuadExpr_tp_clear(PyObject* object) {
    Py_CLEAR(as_mquadexpr(object).dict);
    return 0;
}

void MQuadExpr_dealloc(PyObject* object) {
    MQuadExpr& self = as_mquadexpr(object);
    PyObject_GC_UnTrack(object);
    if (self.weakrefs) PyObject_ClearWeakRefs(object);
    Py_CLEAR(self.dict);
    Py_CLEAR(self.qearr);
    Py_CLEAR(self.ndle);
    delete std::exchange(self.parts, nullptr);
    free_instance(object, MQuadExpr_Type);
}

PyGetSetDef properties[] = {
    {"shape", getter_of<MQuadExpr_shape>, nullptr, "Lengths of the dimensions (tuple of int).", nullptr},
    {"ndim", getter_of<MQuadExpr_ndim>, nullptr, "Number of dimensions (int).", nullptr},
    {"size", getter_of<MQuadExpr_size>, nullptr, "Number of cells (int).", nullptr},
    {"_ndle", getter_of<MQuadExpr_ndle>, nullptr, "The linear and constant half (MLinExpr).", nullptr},
    {"_qearr", getter_of<MQuadExpr_qearr>, nullptr, "ndarray of QuadExpr of the full form, None in compact form.",
     nullptr},
    {"_quadparts", getter_of<MQuadExpr_quadparts>, nullptr,
     "New list of tuples (MVar x, coo_matrix Q, MVar y) of the compact form; None in full form.", nullptr},
    {"_is_compact", getter_of<MQuadExpr_is_compact>, nullptr, "Whether the form is the compact one (bool).", nullptr},
    dict_property(),
    {},
};

PyMemberDef members[] = {dict_at(offsetof(MQuadExpr, dict)), weakrefs_at(offsetof(MQuadExpr, weakrefs)), {}};

PyMethodDef methods[] = {
    {"zeros", method<MQuadExpr_zeros>, kKeywords | METH_CLASS,
     "zeros($type, shape)\n--\n\nMQuadExpr of the given shape (int or tuple) with the value 0 in each cell."},
    {"_zeros_full", method<MQuadExpr_zeros_full>, kKeywords | METH_CLASS,
     "_zeros_full($type, shape)\n--\n\nThe same in full form."},
    {"_from_mlinexpr", method<MQuadExpr_from_mlinexpr>, kKeywords | METH_CLASS,
     "_from_mlinexpr($type, ndle, force_full=False)\n--\n\nMQuadExpr with the values of an MLinExpr."},
    {"_from_quad_expr", method<MQuadExpr_from_quad_expr>, kKeywords | METH_CLASS,
     "_from_quad_expr($type, qe)\n--\n\nMQuadExpr without dimensions of a copy of a QuadExpr."},
    {"_from_mvar_times_mvar", method<MQuadExpr_from_mvars>, kKeywords | METH_CLASS,
     "_from_mvar_times_mvar($type, mvar_left, mvar_right, force_full=False)\n--\n\n"
     "MQuadExpr of the elementwise product of two MVars, whose shapes are broadcast."},
    {"_allows_compact", method<MQuadExpr_allows_compact>, kKeywords | METH_STATIC,
     "_allows_compact(shape)\n--\n\nWhether the compact form can have the shape (bool)."},
    {"_add_quadpart", method<MQuadExpr_add_quadpart>, kKeywords,
     "_add_quadpart($self, x, Q, y)\n--\n\nAppend the part x' Q y."},
    {"_concat_quadparts", method<MQuadExpr_concat_quadparts>, METH_NOARGS,
     "_concat_quadparts($self)\n--\n\nMake the parts of a compact expression one, with Q in blocks."},
    {"_extract_xQy", method<MQuadExpr_extract_xQy>, METH_NOARGS,
     "_extract_xQy($self)\n--\n\nTuple (x, Q, y) of a compact expression with its parts made one."},
    {"_extract_quadexpr", method<MQuadExpr_extract_quadexpr>, METH_NOARGS,
     "_extract_quadexpr($self)\n--\n\nQuadExpr of the quadratic terms of a compact expression."},
    {"_to_full", method<MQuadExpr_to_full>, METH_NOARGS, "_to_full($self)\n--\n\nA compact expression in full form."},
    {"_convert_to_full", method<MQuadExpr_convert_to_full>, METH_NOARGS,
     "_convert_to_full($self)\n--\n\nTurn to full form."},
    {"copy", method<MQuadExpr_copy>, METH_NOARGS, "copy($self)\n--\n\nAn independent copy."},
    {"sum", method<MQuadExpr_sum>, kKeywords,
     "sum($self, axis=None, out=None)\n--\n\n"
     "MQuadExpr of the sums over an axis (int), several (tuple) or all; `out` is there for numpy.sum and must be\n"
     "None. Raises ZelvanError for an axis that isn't there."},
    {"item", method<MQuadExpr_item>, METH_NOARGS,
     "item($self)\n--\n\nThe only cell as a QuadExpr of its own. Raises ValueError for any other size than 1."},
    {"clear", method<MQuadExpr_clear>, METH_NOARGS, "clear($self)\n--\n\nSet each cell to 0."},
    {"_getConstant", method<MQuadExpr_getConstant>, METH_NOARGS,
     "_getConstant($self)\n--\n\nConstants of the cells: an ndarray of float64 of this shape."},
    {"getValue", method<MQuadExpr_getValue>, METH_NOARGS,
     "getValue($self)\n--\n\n"
     "Values of the cells in the current solution: an ndarray of float64 of this shape. Raises what reading X raises\n"
     "where there is none."},
    {"_flatten", method<MQuadExpr_flatten>, METH_NOARGS,
     "_flatten($self)\n--\n\nFlatten each cell of a full expression."},
    {"_normalize", method<MQuadExpr_normalize>, METH_NOARGS,
     "_normalize($self)\n--\n\nMerge the terms of equal variables in each cell of a full expression."},
    {},
};

const char kDoc[] =
    "MQuadExpr(qearr=None, quadparts=None, ndle=None)\n--\n\n"
    "Array of quadratic expressions with numpy's shapes, indices and broadcasting.\n\n"
    "Made by `x @ Q @ x`, `x * y`, `x ** 2` of MVars, by sums that contain those, and by MQuadExpr.zeros(shape).\n"
    "A quadratic form stays a sparse matrix between two vectors of variables; an array of several cells has one\n"
    "QuadExpr for each. The constructor is for the module itself.";

}  // namespace

void init_mquadexpr_type(py::module_& module) {
    PyType_Slot slots[] = {
        {Py_tp_doc, const_cast<char*>(kDoc)},
        {Py_tp_new, reinterpret_cast<void*>(PyType_GenericNew)},
        {Py_tp_init, slot<MQuadExpr_init>()},
        {Py_tp_dealloc, reinterpret_cast<void*>(MQuadExpr_dealloc)},
        {Py_tp_traverse, reinterpret_cast<void*>(MQuadExpr_traverse)},
        {Py_tp_clear, reinterpret_cast<void*>(MQuadExpr_tp_clear)},
        {Py_tp_repr, slot<MQuadExpr_repr>()},
        {Py_tp_richcompare, slot<MQuadExpr_compare>()},
        {Py_mp_subscript, slot<MQuadExpr_getitem>()},
        {Py_mp_ass_subscript, slot<MQuadExpr_setitem>()},
        {Py_sq_item, slot<MQuadExpr_at>()},
        {Py_nb_add, slot<MQuadExpr_add>()},
        {Py_nb_subtract, slot<MQuadExpr_subtract>()},
        {Py_nb_multiply, slot<MQuadExpr_multiply>()},
        {Py_nb_matrix_multiply, slot<MQuadExpr_matmul>()},
        {Py_nb_true_divide, slot<MQuadExpr_divide>()},
        {Py_nb_inplace_add, slot<MQuadExpr_iadd>()},
        {Py_nb_inplace_subtract, slot<MQuadExpr_isub>()},
        {Py_nb_inplace_multiply, slot<MQuadExpr_imul>()},
        {Py_nb_inplace_true_divide, slot<MQuadExpr_idiv>()},
        {Py_nb_negative, slot<MQuadExpr_negative>()},
        {Py_nb_positive, slot<MQuadExpr_positive>()},
        {Py_tp_methods, methods},
        {Py_tp_members, members},
        {Py_tp_getset, properties},
        {0, nullptr},
    };
    PyType_Spec spec{"zelvanpy.MQuadExpr", sizeof(MQuadExpr), 0,
                     Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC, slots};
    MQuadExpr_Type = make_type(module, spec);
    auto* type = reinterpret_cast<PyObject*>(MQuadExpr_Type);
    checked(PyObject_SetAttrString(type, "__array_priority__", py::int_(100).ptr()));
    checked(PyObject_SetAttrString(type, "_keep_compact", py::int_(1).ptr()));
    checked(PyObject_DelAttrString(type, "__rtruediv__"));
}

}  // namespace zelvanpy
