// `Model`: the solve call.

#include "exception.h"
#include "model.h"
#include "pyargs.h"

namespace zelvanpy {

namespace {

// A library call on the model without the interpreter lock.
int run_unlocked(Model& self, int (*call)(ZVNmodel*)) {
    ZVNmodel* model = model_pointer(self);
    // Another thread, or a handler of log records, may come while the lock is away; it finds the mark.
    const bool outermost = !self.solving;
    self.solving = true;
    int error;
    Py_BEGIN_ALLOW_THREADS;
    error = call(model);
    Py_END_ALLOW_THREADS;
    if (outermost) self.solving = false;
    return error;
}

void check_callback(py::handle callback) {
    if (!PyFunction_Check(callback.ptr())) raise_zelvan(-1, "Callback argument must be a function");
    raise_zelvan(ZVN_ERROR_NOT_SUPPORTED, "Callback functions are not supported by this version of the solver");
}

void Model_optimize(Model& self, Args args) {
    static const Signature<1> signature{"optimize", 0, {Name("callback")}};
    const auto [callback] = signature.parse(args);
    call_own(self, "update", {});
    if (callback && callback != Py_None) check_callback(callback);
    Py_INCREF(Py_None);
    Py_XSETREF(self.callback, Py_None);
    ZVNsetsignal(model_pointer(self));
    check(run_unlocked(self, ZVNoptimize), as_object(self));
}

void Model_terminate(Model& self) { ZVNterminate(model_pointer(self)); }

}  // namespace

PyMethodDef model_solve_methods[] = {
    {"optimize", method<Model_optimize>, kKeywords,
     "optimize($self, callback=None)\n--\n\n"
     "Apply the queued changes and solve the model. The outcome is in the attribute Status.\n\n"
     "Raises ZelvanError for a disposed model, for a callback and when the solver fails. Ctrl-C and terminate() stop "
     "the solve."},
    {"terminate", method<Model_terminate>, METH_NOARGS,
     "terminate($self)\n--\n\nAsk a running solve to stop soon; from any thread."},
    {},
};

}  // namespace zelvanpy
