// `Model`: files, copies, log.

#include <algorithm>

#include "exception.h"
#include "model.h"
#include "pyargs.h"
#include "zelvan.h"

namespace zelvanpy {

void model_message(Model& model, py::handle message) {
    const py::object line = steal(PyNumber_Add(message.ptr(), py::str("\n").ptr()));
    ZVNmsg(ZVNgetenv(model_pointer(model)), CString(line));
}

namespace {

// self.message(text), where a subclass may have its own.
void log_line(Model& self, const py::object& text) { call_own(self, "message", text); }

void Model_message(Model& self, Args args) {
    static const Signature<1> signature{"message", 1, {Name("msg")}};
    const auto [message] = signature.parse(args);
    model_message(self, message);
}

void Model_reset(Model& self, Args args) {
    static const Signature<1> signature{"reset", 0, {Name("clearall")}};
    const auto [clearall] = signature.parse(args);
    const int all = clearall ? to_int(clearall, "clearall") : 0;
    log_line(self, py::str(all ? "Discarded solution information including additional information"
                               : "Discarded solution information"));
    check(ZVNreset(model_pointer(self), all), as_object(self));
}

py::object Model_copy(Model& self) {
    ZVNmodel* copy = ZVNcopymodel(model_pointer(self));
    if (!copy) raise_zelvan(-1, "Failed to create copy", -1, error_message(as_object(self)));
    const py::object capsule = wrap_pointer(copy), uenv = borrow(self.uenv);
    return steal(PyObject_CallFunctionObjArgs(reinterpret_cast<PyObject*>(Model_Type), py::str("").ptr(), uenv.ptr(),
                                              capsule.ptr(), nullptr));
}

void Model_write(Model& self, Args args) {
    static const Signature<1> signature{"write", 1, {Name("filename")}};
    const auto [filename] = signature.parse(args);
    const CString name(file_name(filename));
    if (ZVNismodelfile(name) || ZVNisattrfile(name)) call_own(self, "update", {});
    check(ZVNwrite(model_pointer(self), name), as_object(self));
}

bool contains(py::handle text, const char* part) {
    return checked(PyUnicode_Contains(text.ptr(), py::str(part).ptr())) != 0;
}

void Model_read(Model& self, Args args) {
    static const struct {
        const char* part;
        const char* message;
    } kinds[] = {
        {".mst", "Read MIP start from file "},
        {".prm", "Read parameters from file "},
        {".ord", "Read branching order from file "},
        {".bas", "Read basis from file "},
    };
    static const Signature<1> signature{"read", 1, {Name("filename")}};
    const auto [argument] = signature.parse(args);
    const py::object filename = file_name(argument);
    if (!PyUnicode_Check(filename.ptr()))
        refuse_argument(PyExc_TypeError, {"read", "filename"}, "str or a path", filename);
    const py::object file = matching_file(filename);
    if (!file) {
        log_line(self, steal(PyUnicode_FromFormat("No file matching '%U' found", filename.ptr())));
        return;
    }
    check(ZVNread(model_pointer(self), CString(file)), as_object(self));
    for (const auto& kind : kinds)
        if (contains(file, kind.part)) {
            log_line(self, steal(PyUnicode_FromFormat("%s%U", kind.message, file.ptr())));
            return;
        }
}

py::object Model_getJSONSolution(Model& self) {
    char* text = nullptr;
    check(ZVNgetjsonsolution(model_pointer(self), &text), as_object(self));
    PyObject* solution = PyUnicode_FromString(text);
    ZVNfree(text);
    return steal(solution);
}

// --- long messages

// Position of a separator between start and end, the last one (direction -1) or the first; -1 when there is none.
Py_ssize_t find_separator(py::handle text, py::handle separators, Py_ssize_t start, Py_ssize_t end, int direction) {
    Py_ssize_t found = -1;
    for (py::handle separator : py::reinterpret_borrow<py::object>(separators)) {
        const Py_ssize_t at = PyUnicode_Find(text.ptr(), separator.ptr(), start, end, direction);
        if (at == -2) throw PythonError{};
        if (at >= 0 && (found < 0 || (at - found) * direction < 0)) found = at;
    }
    return found;
}

// Where the line from `start` ends: at the last separator before the limit that leaves a line at all, or else at
// the next one, wherever that is.
Py_ssize_t line_end(py::handle text, py::handle separators, Py_ssize_t start, Py_ssize_t limit) {
    const Py_ssize_t size = PyUnicode_GET_LENGTH(text.ptr());
    Py_ssize_t end = find_separator(text, separators, start, limit, -1);
    if (end <= start) end = find_separator(text, separators, start + 1, size, 1);
    return end < 0 ? size : end;
}

void Model_splitlongmessage(Model& self, Args args) {
    static const Signature<3> signature{"_splitlongmessage", 1, {Name("longstring"), Name("sep"), Name("length")}};
    const auto [text, sep, length_object] = signature.parse(args);
    if (!PyUnicode_Check(text)) {
        PyErr_Format(PyExc_TypeError, "longstring must be str, not %.200s", Py_TYPE(text)->tp_name);
        throw PythonError{};
    }
    const py::object separators = sep ? borrow(sep) : py::str(" ");
    const Py_ssize_t length = length_object ? std::max(to_int(length_object, "length"), 0) : 90;
    const Py_ssize_t size = PyUnicode_GET_LENGTH(text);
    Py_ssize_t start = 0;
    while (start + length < size) {
        const Py_ssize_t end = line_end(text, separators, start, start + length);
        const py::object line = steal(PyUnicode_Substring(text, start, end));
        log_line(self, line.attr("strip")());
        start = end;
    }
    if (start < size) log_line(self, steal(PyUnicode_Substring(text, start, size)));
}

}  // namespace

PyMethodDef model_file_methods[] = {
    {"reset", method<Model_reset>, kKeywords,
     "reset($self, clearall=0)\n--\n\n"
     "Discard the solution; with a clearall other than 0 also starts, hints and other information for the solver."},
    {"copy", method<Model_copy>, METH_NOARGS,
     "copy($self)\n--\n\n"
     "A new Model with the data of the last update and the same parameters. Raises ZelvanError on failure."},
    {"read", method<Model_read>, kKeywords,
     "read($self, filename)\n--\n\n"
     "Read data into the model; the ending tells what: .prm parameters, .mst or .sol a start, .bas a basis, ...\n\n"
     "filename  a str, in which * and ? stand for the first file that matches; when none does, a line is logged\n\n"
     "Raises ZelvanError for a file that can't be read."},
    {"write", method<Model_write>, kKeywords,
     "write($self, filename)\n--\n\n"
     "Write the model (.mps, .lp), its solution (.sol, .json), parameters (.prm) or other data, by the ending.\n\n"
     "A file of the model shows the queued changes: they are applied first. Raises ZelvanError on failure, which "
     "leaves an existing file as it was."},
    {"getJSONSolution", method<Model_getJSONSolution>, METH_NOARGS,
     "getJSONSolution($self)\n--\n\nThe solution as JSON text (str). Raises ZelvanError when there is none."},
    {"message", method<Model_message>, kKeywords, "message($self, msg)\n--\n\nWrite a line to the log of the model."},
    {"_splitlongmessage", method<Model_splitlongmessage>, kKeywords,
     "_splitlongmessage($self, longstring, sep=' ', length=90)\n--\n\n"
     "Write a long text to the log in lines of at most `length` characters, where a line ends before one of the "
     "characters of `sep`. A stretch without any is not broken."},
    {},
};

}  // namespace zelvanpy
