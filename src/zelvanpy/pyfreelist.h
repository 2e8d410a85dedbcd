#pragma once
// Objects of exact type that wait to be used again.

#include <cstddef>

#include "pytype.h"

namespace zelvanpy {

template <class T, std::size_t Size>
class FreeList {
public:
    // An object of the type, from the list or new, that the collector doesn't know; its fields are to be set.
    T* take(PyTypeObject* type) {
        if (num_) {
            T* object = objects_[--num_];
            revive(reinterpret_cast<PyObject*>(object));
            return object;
        }
        T* object = PyObject_GC_New(T, type);
        if (!object) throw PythonError{};
        own_type(type);
        return object;
    }
    // The end of a deallocator of the type `own`: keeps the object, or gives its memory and then its type back.
    void give(T* object, PyTypeObject* own) {
        auto* self = reinterpret_cast<PyObject*>(object);
        if (Py_TYPE(self) == own && num_ < Size)
            objects_[num_++] = object;
        else
            free_instance(self, own);
    }

private:
    T* objects_[Size];
    std::size_t num_ = 0;
};

}  // namespace zelvanpy
