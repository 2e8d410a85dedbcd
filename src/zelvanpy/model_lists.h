#pragma once
// The five lists of handles of a model, one row for each kind: their building, reading and removal from them.

#include "model.h"

namespace zelvanpy {

struct ListRow {
    Kind kind;
    PyObject* Model::* list;
    int (*remove)(ZVNmodel*, int, const int*);
    Py_ssize_t Model::* live;  // null for the kinds that keep neither count nor flag
    bool Model::* deleted;
    const char* pending_text;
};

// Rows in the order of `Kind`, which starts at 1.
extern const ListRow list_rows[5];
inline const ListRow& list_row(Kind kind) { return list_rows[static_cast<int>(kind) - 1]; }
inline Handle* handle_at(PyObject* list, Py_ssize_t i) { return as_handle(PyList_GET_ITEM(list, i)); }

// The value of an attribute that counts objects of the library's model.
int count_of(Model& model, const char* attribute);

}  // namespace zelvanpy
