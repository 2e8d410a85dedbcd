#include "tempconstr.h"

#include <cstddef>

#include "exception.h"
#include "extern.h"
#include "matrix.h"
#include "pyargs.h"
#include "pyfreelist.h"

namespace zelvanpy {

PyTypeObject* TempConstr_Type = nullptr;

namespace {

FreeList<TempConstr, 64> free_list;

TempConstr* as_tempconstr(PyObject* object) { return reinterpret_cast<TempConstr*>(object); }
PyObject* as_object(TempConstr& self) { return reinterpret_cast<PyObject*>(&self); }

bool must_wake(PyObject* object) {
    const TempConstr* self = as_tempconstr(object);
    // A side that is a TempConstr may come later in the same pass.
    return !is_inert(self->lhs) || !is_inert(self->rhs) || is_tempconstr(self->lhs) || is_tempconstr(self->rhs) ||
           (self->other_sense && !is_inert(self->other_sense));
}

DormantClass dormant_class{nullptr, offsetof(TempConstr, link), must_wake};

TempConstr* allocate(PyTypeObject* type) {
    if (type != TempConstr_Type) return as_tempconstr(steal(type->tp_alloc(type, 0)).release().ptr());
    TempConstr* self = free_list.take(TempConstr_Type);
    self->lhs = self->rhs = self->other_sense = nullptr;
    self->is_set = false;
    fall_asleep(dormant_class, self->link);
    return self;
}

void set_sides(TempConstr& self, py::object lhs, char sense, py::object rhs) {
    py::object old_lhs = py::reinterpret_steal<py::object>(self.lhs);
    py::object old_rhs = py::reinterpret_steal<py::object>(self.rhs);
    self.lhs = lhs.release().ptr();
    self.sense = sense;
    self.rhs = rhs.release().ptr();
    self.is_set = true;
    if (self.link.next && !(is_inert(self.lhs) && is_inert(self.rhs))) wake(as_object(self), self.link);
}

PyObject* TempConstr_new(PyTypeObject* type, py::handle, py::handle) {
    TempConstr* self = allocate(type);
    self->lhs = none().release().ptr();
    self->rhs = none().release().ptr();
    self->sense = '=';
    return as_object(*self);
}

// One of the letters; 0 for any other object.
char letter_of(PyObject* sense) {
    if (!PyUnicode_CheckExact(sense) || PyUnicode_GetLength(sense) != 1) return 0;
    const Py_UCS4 letter = PyUnicode_ReadChar(sense, 0);
    return letter == '<' || letter == '>' || letter == '=' || letter == 'I' ? static_cast<char>(letter) : '\0';
}

// A matrix object on either side: all of the constraint stands on the left.
void gather_left(py::object& lhs, py::object& rhs) {
    if (!is_matrix_operand(lhs) && !is_matrix_operand(rhs)) return;
    lhs = steal(PyNumber_Subtract(lhs.ptr(), rhs.ptr()));
    rhs = steal(PyFloat_FromDouble(0.0));
}

// A record is set once: who works on one needn't fear that its sides go.
void TempConstr_init(TempConstr& self, PyObject* args, PyObject* kwargs) {
    static const Signature<3> kInit{"TempConstr", 3, {Name("lhs"), Name("sense"), Name("rhs")}};
    const auto [lhs, sense, rhs] = kInit.parse(args, kwargs);
    if (self.is_set) return;
    const char letter = letter_of(sense);
    if (!letter) {
        self.other_sense = borrow(sense).release().ptr();
        if (self.link.next && !is_inert(sense)) wake(as_object(self), self.link);
    }
    py::object left = borrow(lhs), right = borrow(rhs);
    gather_left(left, right);
    set_sides(self, std::move(left), letter, std::move(right));
}

void give_back(TempConstr* self) {
    Py_XDECREF(self->lhs);
    Py_XDECREF(self->rhs);
    Py_XDECREF(self->other_sense);
    free_list.give(self, TempConstr_Type);
}

bool is_nested(const TempConstr* self) {
    return (self->lhs && Py_TYPE(self->lhs) == TempConstr_Type) || (self->rhs && Py_TYPE(self->rhs) == TempConstr_Type);
}

// A long nest is unwound by the trashcan instead of the C stack; for a Python subclass, Python sees to that.
void TempConstr_dealloc(PyObject* object) {
    TempConstr* self = as_tempconstr(object);
    if (self->link.next)
        leave_ring(self->link);
    else
        PyObject_GC_UnTrack(object);
    if (Py_TYPE(object) != TempConstr_Type || !is_nested(self)) return give_back(self);
#if PY_VERSION_HEX >= 0x03080000
    Py_TRASHCAN_BEGIN(object, TempConstr_dealloc);
    give_back(self);
    Py_TRASHCAN_END;
#else
    Py_TRASHCAN_SAFE_BEGIN(object);
    give_back(self);
    Py_TRASHCAN_SAFE_END(object);
#endif
}

int TempConstr_traverse(PyObject* object, visitproc visit, void* arg) {
    Py_VISIT(as_tempconstr(object)->lhs);
    Py_VISIT(as_tempconstr(object)->rhs);
    Py_VISIT(as_tempconstr(object)->other_sense);
    return visit_type(object, visit, arg);
}

// The sides stay objects, as a finalizer may still look at them.
int TempConstr_clear(PyObject* object) {
    TempConstr& self = *as_tempconstr(object);
    set_sides(self, none(), self.sense, none());
    if (self.other_sense) Py_SETREF(self.other_sense, none().release().ptr());
    return 0;
}

py::object TempConstr_repr(TempConstr& self) {
    const char* sign = self.sense == '<' ? "<=" : self.sense == '>' ? ">=" : "==";
    const py::object lhs = borrow(self.lhs), rhs = borrow(self.rhs);  // the collector may clear the record
    return steal(PyUnicode_FromFormat("<zelvan.TempConstr: %S %s %S>", lhs.ptr(), sign, rhs.ptr()));
}

PyObject* TempConstr_shift(py::handle left, py::handle right) {
    if (is_tempconstr(left)) return new_tempconstr(borrow(left), 'I', borrow(right));
    Py_INCREF(Py_NotImplemented);
    return Py_NotImplemented;
}

int TempConstr_bool(py::handle) {
    raise_zelvan(0, "Constraint has no bool value (are you trying \"lb <= expr <= ub\"?)");
}
PyObject* TempConstr_nonzero(TempConstr&) {
    TempConstr_bool(nullptr);
    return nullptr;
}

PyObject* TempConstr_compare(py::handle, py::handle, int op) {
    if (op == Py_LE || op == Py_GE) raise_zelvan(0, "Constraint comparison not implemented");
    Py_INCREF(Py_NotImplemented);
    return Py_NotImplemented;
}

py::object TempConstr_sense(TempConstr& self) {
    return self.other_sense ? borrow(self.other_sense) : steal(PyUnicode_FromFormat("%c", self.sense));
}
py::object TempConstr_lhs(TempConstr& self) { return borrow(self.lhs); }
py::object TempConstr_rhs(TempConstr& self) { return borrow(self.rhs); }

py::object TempConstr_reduce(TempConstr& self) {
    return reduced(as_object(self), py::make_tuple(py::handle(self.lhs), TempConstr_sense(self), py::handle(self.rhs)));
}

PyGetSetDef properties[] = {
    {"_lhs", getter_of<TempConstr_lhs>, nullptr, "The left side.", nullptr},
    {"_sense", getter_of<TempConstr_sense>, nullptr, "ZVN.LESS_EQUAL, ZVN.GREATER_EQUAL, ZVN.EQUAL or \"I\".", nullptr},
    {"_rhs", getter_of<TempConstr_rhs>, nullptr, "The right side.", nullptr},
    {},
};

PyMethodDef methods[] = {
    {"__nonzero__", method<TempConstr_nonzero>, METH_NOARGS, "__nonzero__($self)\n--\n\nThe same as __bool__."},
    {"__reduce__", method<TempConstr_reduce>, METH_NOARGS, "__reduce__($self)\n--\n\nState for pickling."},
    {},
};

const char kDoc[] =
    "TempConstr(lhs, sense, rhs)\n--\n\n"
    "What a comparison of variables or expressions gives, for Model.addConstr: both sides as they are and the "
    "sense.\n\n"
    "`(b == 1) >> (x + y <= 2)` makes an indicator constraint. A TempConstr has no truth value, so `lb <= e <= ub`\n"
    "raises ZelvanError; a range is written `e == [lb, ub]`.";

}  // namespace

char sense_letter(const TempConstr& constr) {
    return constr.other_sense ? first_char(constr.other_sense) : constr.sense;
}

PyObject* new_tempconstr(py::object lhs, char sense, py::object rhs) {
    gather_left(lhs, rhs);
    TempConstr* self = allocate(TempConstr_Type);
    set_sides(*self, std::move(lhs), sense, std::move(rhs));
    return as_object(*self);
}

void init_tempconstr(py::module_& module) {
    PyType_Slot slots[] = {
        {Py_tp_doc, const_cast<char*>(kDoc)},
        {Py_tp_new, slot<TempConstr_new>()},
        {Py_tp_init, slot<TempConstr_init>()},
        {Py_tp_dealloc, reinterpret_cast<void*>(TempConstr_dealloc)},
        {Py_tp_traverse, reinterpret_cast<void*>(TempConstr_traverse)},
        {Py_tp_clear, reinterpret_cast<void*>(TempConstr_clear)},
        {Py_tp_repr, slot<TempConstr_repr>()},
        {Py_tp_richcompare, slot<TempConstr_compare>()},
        {Py_tp_hash, reinterpret_cast<void*>(PyBaseObject_Type.tp_hash)},
        {Py_nb_rshift, slot<TempConstr_shift>()},
        {Py_nb_bool, slot<TempConstr_bool>()},
        {Py_tp_methods, methods},
        {Py_tp_getset, properties},
        {0, nullptr},
    };
    PyType_Spec spec{"zelvanpy.TempConstr", sizeof(TempConstr), 0,
                     Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC, slots};
    TempConstr_Type = make_type(module, spec);
    dormant_class.type = TempConstr_Type;
    add_dormant_class(dormant_class);
}

}  // namespace zelvanpy
