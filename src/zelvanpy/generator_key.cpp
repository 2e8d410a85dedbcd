// The loop variables of a generator expression, found in its compiled code: the targets of the loops that are
// running where it yields. Loops of comprehensions inside it end before the yield, so their variables, which
// newer interpreters compile into the same code object, are told apart.

#include <vector>

#include "exception.h"
#include "model_build.h"
#include "pynames.h"

namespace zelvanpy {

namespace {

struct Instruction {
    std::string name;
    py::object argument;
    long offset;
};

[[noreturn]] void refuse() { raise(PyExc_KeyError, "Loop variables of the constraint generator can't be determined"); }

std::vector<Instruction> disassemble(py::handle code) {
    const py::object get_instructions = py::module_::import("dis").attr("get_instructions");
    std::vector<Instruction> result;
    for (py::handle instruction : get_instructions(code))
        result.push_back({instruction.attr("opname").cast<std::string>(), instruction.attr("argval"),
                          instruction.attr("offset").cast<long>()});
    return result;
}

void append_name(PyObject* names, py::handle name) {
    if (!PyUnicode_Check(name.ptr())) refuse();
    const int known = checked(PySequence_Contains(names, name.ptr()));
    if (!known) checked(PyList_Append(names, name.ptr()));
}

// The names that a loop stores its element to, from the instruction behind its FOR_ITER.
void collect_targets(const std::vector<Instruction>& code, std::size_t at, PyObject* names) {
    for (long open = 1; open > 0; ++at) {
        if (at >= code.size()) refuse();
        const Instruction& instruction = code[at];
        const std::string& name = instruction.name;
        if (name == "EXTENDED_ARG" || name == "CACHE") continue;
        if (name == "UNPACK_SEQUENCE") {
            open += instruction.argument.cast<long>() - 1;
        } else if (name == "UNPACK_EX") {
            const long argument = instruction.argument.cast<long>();
            open += (argument & 0xFF) + (argument >> 8);
        } else if (name == "STORE_FAST" || name == "STORE_DEREF") {
            append_name(names, instruction.argument);
            --open;
        } else if (name == "STORE_FAST_STORE_FAST") {
            for (py::handle target : instruction.argument) {
                append_name(names, target);
                --open;
            }
        } else if (name == "STORE_FAST_LOAD_FAST") {
            append_name(names, py::tuple(instruction.argument)[0]);
            --open;
        } else {
            refuse();  // a target that is no plain name
        }
        if (open < 0) refuse();
    }
}

py::object loop_names(py::handle code) {
    const std::vector<Instruction> instructions = disassemble(code);
    long yield_offset = -1;
    for (const Instruction& instruction : instructions) {
        if (instruction.name == "YIELD_FROM" || instruction.name == "SEND") refuse();
        if (instruction.name != "YIELD_VALUE") continue;
        if (yield_offset >= 0) refuse();
        yield_offset = instruction.offset;
    }
    py::object names = steal(PyList_New(0));
    for (std::size_t i = 0; i < instructions.size(); ++i) {
        const Instruction& instruction = instructions[i];
        if (instruction.name != "FOR_ITER" || instruction.offset > yield_offset) continue;
        if (instruction.argument.cast<long>() > yield_offset) collect_targets(instructions, i + 1, names.ptr());
    }
    if (PyList_GET_SIZE(names.ptr()) == 0) refuse();
    return steal(PyList_AsTuple(names.ptr()));
}

}  // namespace

GeneratorKey::GeneratorKey(py::handle generator) {
    static const Name kFrame("gi_frame");
    frame_ = py::reinterpret_steal<py::object>(PyObject_GetAttr(generator.ptr(), kFrame.get()));
    if (!frame_ && !PyErr_ExceptionMatches(PyExc_AttributeError)) throw PythonError{};
    PyErr_Clear();
    if (!frame_ || frame_.is_none()) raise(PyExc_KeyError, "Missing constraint index");
    names_ = loop_names(frame_.attr("f_code"));
}

py::object GeneratorKey::current() const {
    const py::object locals = frame_.attr("f_locals");
    const Py_ssize_t count = PyTuple_GET_SIZE(names_.ptr());
    const auto value = [&](Py_ssize_t i) {
        return steal(PyObject_GetItem(locals.ptr(), PyTuple_GET_ITEM(names_.ptr(), i)));
    };
    if (count == 1) return value(0);
    py::object key = steal(PyTuple_New(count));
    for (Py_ssize_t i = 0; i < count; ++i) PyTuple_SET_ITEM(key.ptr(), i, value(i).release().ptr());
    return key;
}

}  // namespace zelvanpy
