#pragma once
// What is done alike to objects of all kinds. A family is added to in two steps: make_room takes all memory, append
// then takes none, so that several families change together or not at all.

#include <cstddef>
#include <tuple>
#include <type_traits>
#include <utility>

#include "core/model_data.h"
#include "core/room.h"

namespace zelvan {

// The arrays of a family that are parallel to its objects.
inline constexpr auto arrays_of(const Columns&) {
    return std::tuple(&Columns::lb, &Columns::ub, &Columns::obj, &Columns::type);
}
inline constexpr auto arrays_of(const Rows&) { return std::tuple(&Rows::sense, &Rows::rhs, &Rows::lower); }
inline constexpr auto arrays_of(const SosSets&) { return std::tuple(&SosSets::type); }

template <class Family>
concept IsFamily = std::is_base_of_v<Identity, Family>;
template <class Family>
inline constexpr bool kIsSparse = std::is_base_of_v<SparseRows, Family>;

// Room for so many further objects, bytes of names and entries.
template <IsFamily Family>
void make_room(Family& family, int objects, std::size_t name_bytes = 0, std::size_t entries = 0) {
    std::apply([&](auto... array) { (make_room(family.*array, objects), ...); }, arrays_of(family));
    if constexpr (kIsSparse<Family>) {
        make_room(family.start, objects);
        make_room(family.col, entries);
        make_room(family.val, entries);
    }
    family.names.make_room(objects, name_bytes);
    family.tags.make_room(objects, 0);
    family.optional.for_each([&](std::vector<double>& values) { make_room(values, objects); });
}

// Room for `append(family, added)` and for so many objects and bytes of names more behind that.
template <IsFamily Family>
void make_room_for(Family& family, Family& added, int more, std::size_t name_bytes) {
    // An empty family takes over the arrays of the other.
    Family& grown = family.size() == 0 ? added : family;
    const int objects = family.size() == 0 ? more : added.size() + more;
    const std::size_t entries = [&]() -> std::size_t {
        if constexpr (kIsSparse<Family>) return family.size() == 0 ? 0 : added.col.size();
        return 0;
    }();
    make_room(grown, objects, name_bytes + (family.size() == 0 ? 0 : added.names.num_bytes()), entries);
    family.optional.for_each([&](std::vector<double>& values) { make_room(values, added.size() + more); });
}

inline void append(SparseRows& rows, const SparseRows& added) noexcept {
    const std::int64_t shift = rows.num_entries();
    rows.col.insert(rows.col.end(), added.col.begin(), added.col.end());
    rows.val.insert(rows.val.end(), added.val.begin(), added.val.end());
    for (std::size_t i = 1; i < added.start.size(); ++i) rows.start.push_back(added.start[i] + shift);
}

// Behind make_room_for. What `added` holds afterwards is of no use.
template <IsFamily Family>
void append(Family& family, Family& added) noexcept {
    const int total = family.size() + added.size();
    const bool takes_over = family.size() == 0;
    std::apply(
        [&](auto... array) {
            const auto add = [&](auto& to, auto& from) {
                if (takes_over)
                    to.swap(from);
                else
                    to.insert(to.end(), from.begin(), from.end());
            };
            (add(family.*array, added.*array), ...);
        },
        arrays_of(family));
    if constexpr (kIsSparse<Family>) {
        if (takes_over)
            std::swap(static_cast<SparseRows&>(family), static_cast<SparseRows&>(added));
        else
            append(static_cast<SparseRows&>(family), static_cast<const SparseRows&>(added));
    }
    family.names.append(added.names);
    family.tags.append(added.tags);
    family.optional.resize(total);
}

template <class T>
void compact(std::vector<T>& values, const std::vector<char>& keep) noexcept {
    std::size_t next = 0;
    for (std::size_t i = 0; i < values.size(); ++i)
        if (keep[i]) values[next++] = values[i];
    values.resize(next);
}

void compact(SparseRows& rows, const std::vector<char>& keep) noexcept;
// Gives the columns their new numbers; entries of a column whose number is negative are dropped.
void renumber(SparseRows& rows, const std::vector<int>& number) noexcept;
void renumber(SparseVector& vector, const std::vector<int>& number) noexcept;

// Keeps the objects with keep[i] != 0, in order.
template <IsFamily Family>
void compact(Family& family, const std::vector<char>& keep) noexcept {
    if constexpr (kIsSparse<Family>) compact(static_cast<SparseRows&>(family), keep);
    std::apply([&](auto... array) { (compact(family.*array, keep), ...); }, arrays_of(family));
    family.names.compact(keep);
    family.tags.compact(keep);
    family.optional.for_each([&](std::vector<double>& values) { compact(values, keep); });
}

}  // namespace zelvan
