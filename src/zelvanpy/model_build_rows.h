#pragma once
// Rows, linear and quadratic, from expressions and from comparisons.

#include <optional>

#include "model_build.h"
#include "tempconstr.h"

namespace zelvanpy {

inline constexpr char kInvalid[] = "Invalid argument to Model.addConstr";

struct Row {
    char sense = ZVN_LESS_EQUAL;
    double lower = -ZVN_INFINITY;  // not infinite: a range row
    double upper = 0.0;
};

// Whether no name is given.
bool is_empty(PyObject* name);
// The letter of a sense argument.
char sense_argument(PyObject* sense);

// The name of a row as the library takes it; missing means none. It is converted before the model is looked at, as
// that may run code, but one that doesn't convert is refused when it is used, behind what else is to be refused.
class RowName {
public:
    explicit RowName(PyObject* name);
    operator const char*() const;

private:
    std::optional<CString> text_;
    std::optional<py::error_already_set> refusal_;
};

// Adds a linear row; `constr` comes from new_member().
py::object add_linear_row(Model& self, py::object constr, LibraryTerms& terms, const Row& row, const char* name);
// Adds a row for an expression, whose constant moves to the sides. A given sense replaces that of the row.
py::object add_row(Model& self, py::handle expr, Row row, PyObject* name, PyObject* sense = nullptr);
// Adds lhs - rhs as a row without the difference as an object, where both sides are of the module's own types or
// numbers; false, with nothing added, for others.
bool add_difference(Model& self, TempConstr* constr, PyObject* name, py::object& result);

}  // namespace zelvanpy
