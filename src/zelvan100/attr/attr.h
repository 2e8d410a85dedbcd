#pragma once
// The attributes: one table of name, type, kind of object and settability, and for each attribute the
// functions that read and write it.

#include <string_view>

#include "core/kinds.h"
#include "core/model.h"

namespace zelvan {

// Numbers of the attributes, in the order of the table in attr/table.cpp.
enum class Attr : int {
#define ZELVAN_ATTR(name) name,
#include "attr/names.inc"
#undef ZELVAN_ATTR
};

enum AttrType { kChar = 0, kInt = 1, kDouble = 2, kString = 3 };

int num_attrs();
const char* attr_name(int i);
// Number of the attribute of that name in any letter case, -1 when there is none. A pointer that
// attr_name returned is recognised without a comparison of letters.
int find_attr(const char* name);

}  // namespace zelvan
