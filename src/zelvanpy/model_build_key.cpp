#include "model_build_key.h"

#include <algorithm>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

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

// The names that an instruction stores to.
std::vector<py::object> stored_names(const Instruction& instruction) {
    const std::string& name = instruction.name;
    if (name == "STORE_FAST" || name == "STORE_DEREF") return {instruction.argument};
    if (name == "STORE_FAST_LOAD_FAST") return {py::tuple(instruction.argument)[0]};
    std::vector<py::object> names;
    if (name == "STORE_FAST_STORE_FAST")
        for (py::handle target : instruction.argument) names.push_back(borrow(target));
    return names;
}

// The names that a loop stores its element to, from the instruction behind its FOR_ITER; the end of these stores.
std::size_t collect_targets(const std::vector<Instruction>& code, std::size_t at, PyObject* names) {
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
        } else {
            const std::vector<py::object> targets = stored_names(instruction);
            if (targets.empty()) refuse();  // a target that is no plain name
            for (const py::object& target : targets) append_name(names, target);
            open -= static_cast<long>(targets.size());
        }
        if (open < 0) refuse();
    }
    return at;
}

// The names of all loops that run at the yield, from the outermost to the innermost.
class LoopNames {
public:
    LoopNames(py::handle code, long yield_offset)
        : yield_(yield_offset),
          is_expression_(code.attr("co_name").cast<std::string>() == "<genexpr>"),
          outer_(code.attr("co_freevars")) {}

    py::object collect(const std::vector<Instruction>& code) {
        bool past_loop = false;
        for (std::size_t i = 0; i < code.size() && code[i].offset < yield_;) {
            if (code[i].name == "FOR_ITER") {
                const long end = code[i].argument.cast<long>();
                if (end > yield_) {
                    i = collect_targets(code, i + 1, names_.ptr());
                    continue;
                }
                past_loop = true;
                while (i < code.size() && code[i].offset < end) ++i;
                continue;
            }
            // Newer interpreters move handlers of exceptions behind all the loops that they run in.
            if (code[i].name == "PUSH_EXC_INFO" && past_loop && PyList_GET_SIZE(names_.ptr()) == 0) refuse();
            if (code[i].name == "LOAD_FAST_AND_CLEAR") ++saved_[code[i].argument.cast<std::string>()];
            if (stored_names(code[i]).empty())
                ++i;
            else
                i = add_assigned(code, i);
        }
        if (PyList_GET_SIZE(names_.ptr()) == 0) refuse();
        return steal(PyList_AsTuple(names_.ptr()));
    }

private:
    // Stores in a row, and where they end. Those of an unpacked tuple display may stand in reverse.
    std::size_t add_assigned(const std::vector<Instruction>& code, std::size_t at) {
        const std::string& before = code[at - 1].name;
        const bool in_order = before.rfind("UNPACK_", 0) == 0 || before.rfind("ROT_", 0) == 0 || before == "SWAP";
        std::vector<py::object> names;
        for (bool more = true; more; ++at) {
            const std::vector<py::object> stored = stored_names(code[at]);
            names.insert(names.end(), stored.begin(), stored.end());
            more = code[at].name != "STORE_FAST_LOAD_FAST" && !stored_names(code[at + 1]).empty();
        }
        if (!in_order) std::reverse(names.begin(), names.end());
        if (is_expression_)
            for (const py::object& name : names) add_name(name);
        return at;
    }

    // The name is a loop's, unless a variable gets the value back that an inlined comprehension had saved, or it is
    // one of the enclosing function.
    void add_name(const py::object& name) {
        int& saved = saved_[name.cast<std::string>()];
        if (saved > 0)
            --saved;
        else if (!checked(PySequence_Contains(outer_.ptr(), name.ptr())))
            append_name(names_.ptr(), name);
    }

    const long yield_;
    const bool is_expression_;
    const py::object outer_;
    const py::object names_ = steal(PyList_New(0));
    std::map<std::string, int> saved_;
};

py::object loop_names(py::handle code) {
    const std::vector<Instruction> instructions = disassemble(code);
    long yield_offset = -1;
    for (const Instruction& instruction : instructions) {
        if (instruction.name == "YIELD_FROM" || instruction.name == "SEND") refuse();
        if (instruction.name != "YIELD_VALUE") continue;
        if (yield_offset >= 0) refuse();
        yield_offset = instruction.offset;
    }
    if (yield_offset < 0) return steal(PyTuple_New(0));  // it was optimized away: there won't be any key
    return LoopNames(code, yield_offset).collect(instructions);
}

// The loop names of the code objects seen lately, which stay alive here.
py::object known_loop_names(const py::object& code) {
    struct Known {
        py::object code, names;
    };
    constexpr std::size_t kMaxKnown = 256;
    static auto& known = *new std::unordered_map<PyObject*, Known>;
    if (const auto found = known.find(code.ptr()); found != known.end()) return found->second.names;
    py::object names = loop_names(code);
    // Giving up what was known may run code that comes here again.
    std::unordered_map<PyObject*, Known> forgotten;
    if (known.size() >= kMaxKnown) known.swap(forgotten);
    known.emplace(code.ptr(), Known{code, names});
    return names;
}

}  // namespace

GeneratorKey::GeneratorKey(py::handle generator) {
    static const Name kFrame("gi_frame"), kCode("f_code");
    frame_ = py::reinterpret_steal<py::object>(PyObject_GetAttr(generator.ptr(), kFrame.get()));
    if (!frame_ && !PyErr_ExceptionMatches(PyExc_AttributeError)) throw PythonError{};
    PyErr_Clear();
    if (!frame_ || frame_.is_none()) raise(PyExc_KeyError, "Missing constraint index");
    names_ = known_loop_names(steal(PyObject_GetAttr(frame_.ptr(), kCode.get())));
}

py::object GeneratorKey::current() const {
    const py::object locals = frame_locals(frame_);
    const bool is_dict = PyDict_CheckExact(locals.ptr());
    const auto value = [&](Py_ssize_t i) {
        PyObject* name = PyTuple_GET_ITEM(names_.ptr(), i);
        PyObject* found = is_dict ? PyDict_GetItemWithError(locals.ptr(), name) : nullptr;
        return found ? borrow(found) : steal(PyObject_GetItem(locals.ptr(), name));
    };
    const Py_ssize_t count = PyTuple_GET_SIZE(names_.ptr());
    if (count == 1) return value(0);
    py::object key = steal(PyTuple_New(count));
    for (Py_ssize_t i = 0; i < count; ++i) PyTuple_SET_ITEM(key.ptr(), i, value(i).release().ptr());
    return key;
}

}  // namespace zelvanpy
