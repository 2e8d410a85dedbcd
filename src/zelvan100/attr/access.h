#pragma once
// Reading and queueing attributes by number, with all checks. Everything throws Error.

#include "attr/spec.h"

namespace zelvan {

// Number of the attribute of that name, which must have the type and belong to the model (or to its objects).
int attr_of_model(const char* name, AttrType type);
int attr_of_objects(const char* name, AttrType type);

double read_number(const Model& model, int attr);
const char* read_text(const Model& model, int attr);
template <class T>
T read_number_at(const Model& model, int attr, int i);
const char* read_text_at(Model& model, int attr, int i);
template <class T>
void read_numbers(const Model& model, int attr, int n, const int* ind, T* values);
void read_texts(Model& model, int attr, int n, const int* ind, char** values);
// Whether a read would succeed now.
bool readable(const Model& model, int attr);

void write_number(Model& model, int attr, double value);
void write_text(Model& model, int attr, const char* value);
// Checks all before it queues the first.
template <class T>
void write_numbers(Model& model, int attr, int n, const int* ind, const T* values);
void write_texts(Model& model, int attr, int n, const int* ind, const char* const* values);

}  // namespace zelvan
