// Attributes: information, then reads and writes for the model, one object, a list of objects.

#include "api/guard.h"
#include "attr/access.h"

using namespace zelvan;

namespace {

int known_attr(const char* name) {
    require(name, "name");
    const int attr = find_attr(name);
    if (attr < 0) throw Error(ZVN_ERROR_UNKNOWN_ATTRIBUTE, std::string("Unknown attribute '") + name + "'");
    return attr;
}

void check_list(int n, const int* ind, const void* values) {
    if (n < 0) throw Error(ZVN_ERROR_INVALID_ARGUMENT, "Number of values is negative");
    if (n == 0) return;
    require(ind, "ind");
    require(values, "values");
}

template <class T>
int get_one(ZVNmodel* model, const char* name, AttrType type, T* value) {
    return read_model(model, [&](Model& m) {
        require(value, "value");
        *value = static_cast<T>(read_number(m, attr_of_model(name, type)));
    });
}

template <class T>
int get_at(ZVNmodel* model, const char* name, AttrType type, int i, T* value) {
    return read_model(model, [&](Model& m) {
        require(value, "value");
        *value = read_number_at<T>(m, attr_of_objects(name, type), i);
    });
}

template <class T>
int get_list(ZVNmodel* model, const char* name, AttrType type, int n, const int* ind, T* values) {
    return read_model(model, [&](Model& m) {
        check_list(n, ind, values);
        read_numbers(m, attr_of_objects(name, type), n, ind, values);
    });
}

int set_one(ZVNmodel* model, const char* name, AttrType type, double value) {
    return change_model(model, [&](Model& m) { write_number(m, attr_of_model(name, type), value); });
}

template <class T>
int set_list(ZVNmodel* model, const char* name, AttrType type, int n, const int* ind, const T* values) {
    return change_model(model, [&](Model& m) {
        check_list(n, ind, values);
        write_numbers(m, attr_of_objects(name, type), n, ind, values);
    });
}

}  // namespace

int ZVNgetnumattributes(ZVNmodel* model) { return model_of(model) ? num_attrs() : 0; }

int ZVNgetattrname(ZVNmodel* model, int i, char** name) {
    return with_model(model, [&](Model&) {
        require(name, "name");
        if (i < 0 || i >= num_attrs())
            throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE, "Attribute index " + std::to_string(i) + " is out of range [0, " +
                                                          std::to_string(num_attrs() - 1) + "]");
        *name = const_cast<char*>(attr_name(i));
    });
}

int ZVNgetattrinfo(ZVNmodel* model, const char* name, int* type, int* kind, int* settable) {
    return with_model(model, [&](Model&) {
        const AttrSpec& spec = attr_spec(known_attr(name));
        if (type) *type = spec.type;
        if (kind) *kind = static_cast<int>(spec.kind);
        if (settable) *settable = spec.settable;
    });
}

int ZVNisattravailable(ZVNmodel* model, const char* name) {
    int available = 0;
    read_model(model, [&](Model& m) { available = readable(m, known_attr(name)); });
    return available;
}

// All values are at hand already.
int ZVNprefetchattr(ZVNmodel* model, const char* name) {
    return with_model(model, [&](Model&) { known_attr(name); });
}

int ZVNgetintattr(ZVNmodel* model, const char* name, int* value) { return get_one(model, name, kInt, value); }

int ZVNgetdblattr(ZVNmodel* model, const char* name, double* value) { return get_one(model, name, kDouble, value); }

int ZVNgetstrattr(ZVNmodel* model, const char* name, char** value) {
    return read_model(model, [&](Model& m) {
        require(value, "value");
        *value = const_cast<char*>(read_text(m, attr_of_model(name, kString)));
    });
}

int ZVNsetintattr(ZVNmodel* model, const char* name, int value) { return set_one(model, name, kInt, value); }

int ZVNsetdblattr(ZVNmodel* model, const char* name, double value) { return set_one(model, name, kDouble, value); }

int ZVNsetstrattr(ZVNmodel* model, const char* name, const char* value) {
    return change_model(model, [&](Model& m) { write_text(m, attr_of_model(name, kString), value); });
}

int ZVNgetcharattrelement(ZVNmodel* model, const char* name, int i, char* value) {
    return get_at(model, name, kChar, i, value);
}

int ZVNgetintattrelement(ZVNmodel* model, const char* name, int i, int* value) {
    return get_at(model, name, kInt, i, value);
}

int ZVNgetdblattrelement(ZVNmodel* model, const char* name, int i, double* value) {
    return get_at(model, name, kDouble, i, value);
}

int ZVNgetstrattrelement(ZVNmodel* model, const char* name, int i, char** value) {
    return read_model(model, [&](Model& m) {
        require(value, "value");
        *value = const_cast<char*>(read_text_at(m, attr_of_objects(name, kString), i));
    });
}

int ZVNsetcharattrelement(ZVNmodel* model, const char* name, int i, char value) {
    return set_list(model, name, kChar, 1, &i, &value);
}

int ZVNsetintattrelement(ZVNmodel* model, const char* name, int i, int value) {
    return set_list(model, name, kInt, 1, &i, &value);
}

int ZVNsetdblattrelement(ZVNmodel* model, const char* name, int i, double value) {
    return set_list(model, name, kDouble, 1, &i, &value);
}

int ZVNsetstrattrelement(ZVNmodel* model, const char* name, int i, const char* value) {
    return change_model(model, [&](Model& m) { write_texts(m, attr_of_objects(name, kString), 1, &i, &value); });
}

int ZVNgetcharattrlist(ZVNmodel* model, const char* name, int n, const int* ind, char* values) {
    return get_list(model, name, kChar, n, ind, values);
}

int ZVNgetintattrlist(ZVNmodel* model, const char* name, int n, const int* ind, int* values) {
    return get_list(model, name, kInt, n, ind, values);
}

int ZVNgetdblattrlist(ZVNmodel* model, const char* name, int n, const int* ind, double* values) {
    return get_list(model, name, kDouble, n, ind, values);
}

int ZVNgetstrattrlist(ZVNmodel* model, const char* name, int n, const int* ind, char** values) {
    return read_model(model, [&](Model& m) {
        check_list(n, ind, values);
        read_texts(m, attr_of_objects(name, kString), n, ind, values);
    });
}

int ZVNsetcharattrlist(ZVNmodel* model, const char* name, int n, const int* ind, const char* values) {
    return set_list(model, name, kChar, n, ind, values);
}

int ZVNsetintattrlist(ZVNmodel* model, const char* name, int n, const int* ind, const int* values) {
    return set_list(model, name, kInt, n, ind, values);
}

int ZVNsetdblattrlist(ZVNmodel* model, const char* name, int n, const int* ind, const double* values) {
    return set_list(model, name, kDouble, n, ind, values);
}

int ZVNsetstrattrlist(ZVNmodel* model, const char* name, int n, const int* ind, char* const* values) {
    return change_model(model, [&](Model& m) {
        check_list(n, ind, values);
        write_texts(m, attr_of_objects(name, kString), n, ind, values);
    });
}
