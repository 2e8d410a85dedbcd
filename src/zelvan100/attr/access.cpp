#include "attr/access.h"

#include <cmath>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "core/number_text.h"

namespace zelvan {

namespace {

constexpr const char* kTypeNames[] = {"char", "int", "double", "string"};

std::string quoted(const AttrSpec& spec) { return std::string("attribute '") + spec.name + "'"; }

std::string range_text(const AttrSpec& spec) {
    const bool open_below = spec.minimum == -kLargestFinite, open_above = spec.maximum == kLargestFinite;
    return (open_below ? "(-1e20" : "[" + number_text(spec.minimum)) + ", " +
           (open_above ? "1e20)" : number_text(spec.maximum) + "]");
}

int attr_of_type(const char* name, AttrType type) {
    if (!name) throw Error(ZVN_ERROR_NULL_ARGUMENT, "Argument 'name' is NULL");
    const int attr = find_attr(name);
    if (attr < 0) throw Error(ZVN_ERROR_UNKNOWN_ATTRIBUTE, std::string("Unknown attribute '") + name + "'");
    const AttrSpec& spec = attr_spec(attr);
    if (spec.type != type)
        throw Error(ZVN_ERROR_INVALID_ARGUMENT, std::string("Attribute '") + spec.name + "' is of type " +
                                                    kTypeNames[spec.type] + ", not " + kTypeNames[type]);
    return attr;
}

int size_of(const Model& model, Kind kind) { return model.data.size(kind); }

int limit_of(const Model& model, Kind kind) { return model.data.size(kind) + model.queue.size(kind); }

[[noreturn]] void refuse_index(const Model& model, const AttrSpec& spec, int i) {
    const KindSpec& kind = spec_of(spec.kind);
    const int size = size_of(model, spec.kind);
    if (i >= size && i < limit_of(model, spec.kind))
        throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE, "Unable to retrieve " + quoted(spec) + " of " + kind.singular + " " +
                                                      std::to_string(i) + ": it awaits the model's update");
    throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE, "Index " + std::to_string(i) + " for " + quoted(spec) +
                                                  " is out of range: the model has " + std::to_string(size) + " " +
                                                  kind.plural);
}

// Runs a reader and puts the attribute's name to a failure of it.
template <class Read>
auto reading(const AttrSpec& spec, Read&& read) {
    try {
        return read();
    } catch (const Error& e) {
        if (e.code() != ZVN_ERROR_DATA_NOT_AVAILABLE) throw;
        throw missing("Unable to retrieve " + quoted(spec) + ": " + e.text());
    }
}

template <class Reader>
void require_reader(const AttrSpec& spec, Reader reader) {
    if (!reader) throw missing("Unable to retrieve " + quoted(spec) + ": " + spec.why);
}

template <class From, class T>
void gather(const From* from, int n, const int* ind, T* values) {
    for (int k = 0; k < n; ++k) values[k] = static_cast<T>(from[ind[k]]);
}

void check_indices(const Model& model, const AttrSpec& spec, int n, const int* ind) {
    const unsigned size = size_of(model, spec.kind);
    for (int k = 0; k < n; ++k)
        if (static_cast<unsigned>(ind[k]) >= size) refuse_index(model, spec, ind[k]);
}

// Room for n default names, so that none moves while they are handed out.
void reserve_names(Model& model, int n) {
    constexpr std::size_t kLongest = 14;  // "SOS2147483647" and NUL
    model.handed_out.clear();
    model.handed_out.reserve(n * kLongest);
}

const char* text_of(Model& model, const Texts& texts, int i) {
    if (const char* text = texts.names->get(i)) return text;
    if (!texts.prefix) return "";
    const std::string name = texts.prefix + std::to_string(i);
    const std::size_t at = model.handed_out.size();
    model.handed_out.insert(model.handed_out.end(), name.c_str(), name.c_str() + name.size() + 1);
    return model.handed_out.data() + at;
}

const AttrSpec& settable(int attr) {
    const AttrSpec& spec = attr_spec(attr);
    if (!spec.settable)
        throw Error(ZVN_ERROR_INVALID_ARGUMENT, std::string("Attribute '") + spec.name + "' cannot be set");
    if (*spec.why) throw missing("Unable to set " + quoted(spec) + ": " + spec.why);
    return spec;
}

std::string of_object(const AttrSpec& spec, int i) {
    std::string text = quoted(spec) + " of " + spec_of(spec.kind).singular;
    return spec.kind == Kind::kModel ? text : text + " " + std::to_string(i);
}

[[noreturn]] void refuse_value(const AttrSpec& spec, int i, double value, const std::string& expected) {
    throw Error(ZVN_ERROR_VALUE_OUT_OF_RANGE,
                "Value " + number_text(value) + " for " + of_object(spec, i) + " is out of range: " + expected);
}

double checked_number(const AttrSpec& spec, int i, double value) {
    if (std::isinf(value)) value = std::copysign(kInfinity, value);
    if (!(value >= spec.minimum && value <= spec.maximum)) refuse_value(spec, i, value, range_text(spec));
    if (spec.rule == &rules::kModelSense && value == 0) refuse_value(spec, i, value, "1 or -1");
    return value;
}

double checked_char(const AttrSpec& spec, int i, char value) {
    if (value != '\0' && std::strchr(spec.letters, value)) return value;
    std::string expected;
    for (const char* c = spec.letters; *c; ++c) expected += std::string(expected.empty() ? "'" : ", '") + *c + "'";
    throw Error(ZVN_ERROR_INVALID_ARGUMENT,
                std::string("Value '") + value + "' for " + of_object(spec, i) + " is none of " + expected);
}

template <class T>
double checked(const AttrSpec& spec, int i, T value) {
    if constexpr (std::is_same_v<T, char>)
        return checked_char(spec, i, value);
    else
        return checked_number(spec, i, value);
}

void check_text(const AttrSpec& spec, int i, const char* value) {
    if (!value) throw Error(ZVN_ERROR_NULL_ARGUMENT, "Value for " + of_object(spec, i) + " is NULL");
    if (std::strlen(value) > static_cast<std::size_t>(spec.max_length))
        throw Error(ZVN_ERROR_INVALID_ARGUMENT, "Value for " + of_object(spec, i) + " is longer than " +
                                                    std::to_string(spec.max_length) + " bytes: '" +
                                                    std::string(value, 40) + "...'");
}

bool is_objective_n(int attr) {
    return attr >= static_cast<int>(Attr::ObjN) && attr <= static_cast<int>(Attr::ObjNName);
}

// The number of the objective that a write means. Fields that only several objectives have turn the main
// objective into the first of several.
int objective_number(Model& model, int attr, const AttrSpec& spec) {
    if (!is_objective_n(attr)) return 0;
    const int number = model.env.params.get_int(Param::ObjNumber), limit = model.objective_limit();
    if (number >= std::max(limit, 1))
        throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE, "Unable to set " + quoted(spec) + ": parameter ObjNumber is " +
                                                      std::to_string(number) + ", but the model has " +
                                                      std::to_string(std::max(limit, 1)) + " objectives");
    return number;
}

void make_first_objective(Model& model, int attr) {
    const bool own_field =
        is_objective_n(attr) && attr != static_cast<int>(Attr::ObjN) && attr != static_cast<int>(Attr::ObjNCon);
    if (own_field && model.objective_limit() == 0) {
        model.reserve_writes(2);
        model.write_number(rules::kNumObjectives, -1, 1);
    };
}

void check_write_indices(const Model& model, const AttrSpec& spec, int n, const int* ind) {
    const int limit = limit_of(model, spec.kind);
    for (int k = 0; k < n; ++k)
        if (ind[k] < 0 || ind[k] >= limit)
            throw Error(ZVN_ERROR_INDEX_OUT_OF_RANGE, "Index " + std::to_string(ind[k]) + " for " + quoted(spec) +
                                                          " is out of range: the model has " + std::to_string(limit) +
                                                          " " + spec_of(spec.kind).plural);
}

}  // namespace

int attr_of_model(const char* name, AttrType type) {
    const int attr = attr_of_type(name, type);
    const AttrSpec& spec = attr_spec(attr);
    if (spec.kind != Kind::kModel)
        throw Error(ZVN_ERROR_INVALID_ARGUMENT, std::string("Attribute '") + spec.name + "' belongs to " +
                                                    spec_of(spec.kind).plural + ", not to models");
    return attr;
}

int attr_of_objects(const char* name, AttrType type) {
    const int attr = attr_of_type(name, type);
    if (attr_spec(attr).kind == Kind::kModel)
        throw Error(ZVN_ERROR_INVALID_ARGUMENT, std::string("Attribute '") + attr_spec(attr).name +
                                                    "' belongs to the model, not to its variables or constraints");
    return attr;
}

double read_number(const Model& model, int attr) {
    const AttrSpec& spec = attr_spec(attr);
    require_reader(spec, spec.number);
    return reading(spec, [&] { return spec.number(model); });
}

const char* read_text(const Model& model, int attr) {
    const AttrSpec& spec = attr_spec(attr);
    require_reader(spec, spec.text);
    return reading(spec, [&] { return spec.text(model); });
}

template <class T>
T read_number_at(const Model& model, int attr, int i) {
    const AttrSpec& spec = attr_spec(attr);
    if (spec.values) {
        const Values values = reading(spec, [&] { return spec.values(model); });
        check_indices(model, spec, 1, &i);
        return static_cast<T>(values.at(i));
    }
    require_reader(spec, spec.value_at);
    check_indices(model, spec, 1, &i);
    return static_cast<T>(spec.value_at(model, i));
}

const char* read_text_at(Model& model, int attr, int i) {
    char* text = nullptr;
    read_texts(model, attr, 1, &i, &text);
    return text;
}

template <class T>
void read_numbers(const Model& model, int attr, int n, const int* ind, T* values) {
    const AttrSpec& spec = attr_spec(attr);
    if (n == 0 && size_of(model, spec.kind) == 0) return;
    if (spec.values) {
        const Values from = reading(spec, [&] { return spec.values(model); });
        check_indices(model, spec, n, ind);
        if (from.doubles) return gather(from.doubles, n, ind, values);
        if (from.ints) return gather(from.ints, n, ind, values);
        if (from.chars) return gather(from.chars, n, ind, values);
        return std::fill_n(values, n, static_cast<T>(from.same)), void();
    }
    require_reader(spec, spec.value_at);
    check_indices(model, spec, n, ind);
    for (int k = 0; k < n; ++k) values[k] = static_cast<T>(spec.value_at(model, ind[k]));
}

void read_texts(Model& model, int attr, int n, const int* ind, char** values) {
    const AttrSpec& spec = attr_spec(attr);
    if (n == 0 && size_of(model, spec.kind) == 0) return;
    require_reader(spec, spec.texts);
    const Texts texts = spec.texts(model);
    check_indices(model, spec, n, ind);
    reserve_names(model, n);
    for (int k = 0; k < n; ++k) values[k] = const_cast<char*>(text_of(model, texts, ind[k]));
}

bool readable(const Model& model, int attr) {
    const AttrSpec& spec = attr_spec(attr);
    if (spec.available) return spec.available(model);
    try {
        if (spec.number) spec.number(model);
        if (spec.text) spec.text(model);
        if (spec.values) spec.values(model);
        return !*spec.why;
    } catch (const Error&) {
        return false;
    }
}

void write_number(Model& model, int attr, double value) {
    const AttrSpec& spec = settable(attr);
    value = checked_number(spec, -1, value);
    const int number = objective_number(model, attr, spec);
    make_first_objective(model, attr);
    model.reserve_writes(1);
    model.write_number(*spec.rule, -1, value, number);
}

void write_text(Model& model, int attr, const char* value) {
    const AttrSpec& spec = settable(attr);
    check_text(spec, -1, value);
    const int number = objective_number(model, attr, spec);
    std::string text = value;
    model.reserve_texts(1, text.size());
    make_first_objective(model, attr);
    model.write_text(*spec.text_rule, -1, std::move(text), number);
}

template <class T>
void write_numbers(Model& model, int attr, int n, const int* ind, const T* values) {
    const AttrSpec& spec = settable(attr);
    check_write_indices(model, spec, n, ind);
    for (int k = 0; k < n; ++k) checked(spec, ind[k], values[k]);
    const int number = objective_number(model, attr, spec);
    model.reserve_writes(n);
    for (int k = 0; k < n; ++k) model.write_number(*spec.rule, ind[k], checked(spec, ind[k], values[k]), number);
}

void write_texts(Model& model, int attr, int n, const int* ind, const char* const* values) {
    const AttrSpec& spec = settable(attr);
    check_write_indices(model, spec, n, ind);
    for (int k = 0; k < n; ++k) check_text(spec, ind[k], values[k]);
    std::vector<std::string> texts(values, values + n);
    std::size_t bytes = 0;
    for (const std::string& text : texts) bytes += text.size();
    model.reserve_texts(n, bytes);
    for (int k = 0; k < n; ++k) model.write_text(*spec.text_rule, ind[k], std::move(texts[k]));
}

template char read_number_at(const Model&, int, int);
template int read_number_at(const Model&, int, int);
template double read_number_at(const Model&, int, int);
template void read_numbers(const Model&, int, int, const int*, char*);
template void read_numbers(const Model&, int, int, const int*, int*);
template void read_numbers(const Model&, int, int, const int*, double*);
template void write_numbers(Model&, int, int, const int*, const char*);
template void write_numbers(Model&, int, int, const int*, const int*);
template void write_numbers(Model&, int, int, const int*, const double*);

}  // namespace zelvan
