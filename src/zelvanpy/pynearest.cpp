#include "pynearest.h"

#include <algorithm>
#include <vector>

namespace zelvanpy {

namespace {

std::string in_lower_case(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

// Letters to insert, drop, replace or swap with their neighbour (Damerau, 1964; each letter touched once).
std::size_t edit_distance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> before, last(b.size() + 1), row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) last[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (a[i - 1] != b[j - 1])});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
        before = last;
        last = row;
    }
    return last[b.size()];
}

}  // namespace

NearestName::NearestName(py::handle wanted) {
    Py_ssize_t size = 0;
    const char* text = PyUnicode_Check(wanted.ptr()) ? PyUnicode_AsUTF8AndSize(wanted.ptr(), &size) : nullptr;
    PyErr_Clear();  // of surrogates
    if (text) wanted_ = in_lower_case({text, static_cast<std::size_t>(size)});
    distance_ = (wanted_.size() + 1) / 3 + 1;  // one wrong letter in two to four, two in five to seven
}

void NearestName::offer(const char* name) {
    const std::string candidate = in_lower_case(name);
    if (wanted_.empty() || candidate.size() + distance_ <= wanted_.size()) return;
    if (wanted_.size() + distance_ <= candidate.size()) return;
    const std::size_t distance = edit_distance(wanted_, candidate);
    if (distance >= distance_) return;
    distance_ = distance;
    best_ = name;
}

py::object NearestName::hint() const {
    return best_.empty() ? py::object() : steal(PyUnicode_FromFormat("Did you mean %s?", best_.c_str()));
}

}  // namespace zelvanpy
