#include "model_build_names.h"

#include <charconv>
#include <cstring>
#include <utility>

#include "pyiter.h"

namespace zelvanpy {

namespace {

constexpr std::size_t kMaxKeyText = 128;

void append_str(std::string& to, py::handle text) {
    Py_ssize_t size;
    if (const char* utf8 = PyUnicode_AsUTF8AndSize(text.ptr(), &size)) {
        to.append(utf8, size);
        return;
    }
    // Surrogates are judged by who takes the whole name.
    if (!PyErr_ExceptionMatches(PyExc_UnicodeEncodeError)) throw PythonError{};
    PyErr_Clear();
    const py::object bytes = steal(PyUnicode_AsEncodedString(text.ptr(), "utf-8", "surrogatepass"));
    to.append(PyBytes_AS_STRING(bytes.ptr()), PyBytes_GET_SIZE(bytes.ptr()));
}

// str(part), without an object for the usual kinds.
void append_part(std::string& to, py::handle part) {
    if (PyUnicode_CheckExact(part.ptr())) return append_str(to, part);
    if (PyLong_CheckExact(part.ptr())) {
        int overflow;
        const long long value = PyLong_AsLongLongAndOverflow(part.ptr(), &overflow);
        if (value == -1 && PyErr_Occurred()) throw PythonError{};
        if (!overflow) {
            char digits[24];
            to.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
            return;
        }
    }
    append_str(to, steal(PyObject_Str(part.ptr())));
}

void append_key(std::string& to, py::handle key) {
    if (PyTuple_CheckExact(key.ptr())) {
        for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(key.ptr()); ++i) {
            if (i > 0) to += ',';
            append_part(to, PyTuple_GET_ITEM(key.ptr(), i));
        }
        return;
    }
    if (PyUnicode_Check(key.ptr()) || PyLong_CheckExact(key.ptr())) return append_part(to, key);
    PyObject* iterator = PyObject_GetIter(key.ptr());
    if (!iterator) {
        if (!PyErr_ExceptionMatches(PyExc_TypeError)) throw PythonError{};
        PyErr_Clear();
        return append_part(to, key);
    }
    const py::object parts = steal(iterator);
    bool first = true;
    for_each_next(parts, [&](const py::object& part) {
        if (!std::exchange(first, false)) to += ',';
        append_part(to, part);
    });
}

}  // namespace

py::object index_name(py::handle name, py::handle key) {
    if (!checked(PyObject_IsTrue(name.ptr()))) return steal(PyUnicode_FromString(""));
    std::string text;
    append_part(text, name);
    text += '[';
    append_key(text, key);
    text += ']';
    return steal(PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "surrogatepass"));
}

void NameBuffer::close() {
    if (std::memchr(text_.data() + begin_, 0, text_.size() - begin_))
        raise(PyExc_ValueError, "embedded null character");
    for (std::size_t i = begin_; i < text_.size() && !any_letters_; ++i) {
        if (static_cast<unsigned char>(text_[i]) < 128) continue;
        const py::object name =
            steal(PyUnicode_DecodeUTF8(text_.data() + begin_, text_.size() - begin_, "surrogatepass"));
        const py::object detail = steal(Py_BuildValue("(sOs)", "Cannot convert ", name.ptr(), "to ASCII characters"));
        PyErr_SetObject(PyExc_OverflowError, steal(PyTuple_Pack(1, detail.ptr())).ptr());
        throw PythonError{};
    }
    any_ = any_ || text_.size() > begin_;
    start_.push_back(begin_);
    text_.push_back('\0');
    begin_ = text_.size();
}

void NameBuffer::add_indexed(py::handle base, PyObject* keys) {
    const py::object text = steal(PyObject_Str(base.ptr()));
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(keys); ++i) {
        append_str(text_, text);
        text_ += '[';
        append_key(text_, PyList_GET_ITEM(keys, i));
        text_ += ']';
        close();
    }
}

void NameBuffer::add_indexed(py::handle base, const Py_ssize_t* dims, int ndim) {
    std::string prefix;
    append_str(prefix, steal(PyObject_Str(base.ptr())));
    if (ndim == 0) {
        text_ += prefix;
        return close();
    }
    prefix += '[';
    // What stands behind is digits: the first name is looked at for all.
    text_ += prefix;
    close();
    text_.resize(start_.back());
    start_.pop_back();
    begin_ = text_.size();
    Py_ssize_t size = 1;
    for (int d = 0; d < ndim; ++d) size *= dims[d];
    std::vector<Py_ssize_t> index(ndim);
    start_.reserve(start_.size() + size);
    text_.reserve(text_.size() + size * (prefix.size() + 7 * static_cast<std::size_t>(ndim)));
    for (Py_ssize_t i = 0; i < size; ++i) {
        start_.push_back(text_.size());
        text_ += prefix;
        char digits[kMaxKeyText];
        char* end = digits;
        for (int d = 0; d < ndim; ++d) {
            if (end > digits + kMaxKeyText / 2) text_.append(digits, std::exchange(end, digits));
            end = std::to_chars(end, digits + kMaxKeyText, index[d]).ptr;
            *end++ = d + 1 < ndim ? ',' : ']';
        }
        *end++ = '\0';
        text_.append(digits, end);
        for (int d = ndim - 1; d >= 0 && ++index[d] == dims[d]; --d) index[d] = 0;
    }
    begin_ = text_.size();
}

void NameBuffer::add(py::handle name) {
    if (!PyUnicode_Check(name.ptr())) {
        PyErr_Format(PyExc_TypeError, "variable names must be str, not %.200s", Py_TYPE(name.ptr())->tp_name);
        throw PythonError{};
    }
    append_str(text_, name);
    close();
}

const std::vector<char*>& NameBuffer::texts() {
    pointers_.resize(start_.size());
    for (std::size_t i = 0; i < start_.size(); ++i) pointers_[i] = text_.data() + start_[i];
    return pointers_;
}

char* const* NameBuffer::pointers() { return any_ ? texts().data() : nullptr; }

}  // namespace zelvanpy
