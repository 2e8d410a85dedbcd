#pragma once
// What is done alike to objects of all kinds. A family is added to in two steps: make_room takes all memory, append
// then takes none, so that several families change together or not at all.

#include <algorithm>
#include <cstddef>
#include <cstdint>
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
inline constexpr auto arrays_of(const QuadRows&) { return std::tuple(&QuadRows::sense, &QuadRows::rhs); }

// A list of entries for each object, one behind the other in arrays that are parallel to each other; those of object i
// begin at start[i].
template <class... T>
struct EntryLists {
    std::vector<std::int64_t>& start;
    std::tuple<std::vector<T>&...> arrays;
};

inline auto lists_of(Columns&) { return std::tuple(); }
inline auto lists_of(SparseRows& rows) { return std::tuple(EntryLists<int, double>{rows.start, {rows.col, rows.val}}); }
inline auto lists_of(QuadRows& rows) {
    return std::tuple_cat(
        lists_of(static_cast<SparseRows&>(rows)),
        std::tuple(EntryLists<int, int, double>{rows.quad_start, {rows.quad.row, rows.quad.col, rows.quad.val}}));
}

template <class Family>
concept IsFamily = std::is_base_of_v<Identity, Family>;

// The elements of one tuple with those of another.
template <class A, class B, class Body>
void for_each_pair(const A& a, const B& b, Body&& body) {
    [&]<std::size_t... k>(std::index_sequence<k...>) {
        (body(std::get<k>(a), std::get<k>(b)), ...);
    }(std::make_index_sequence<std::tuple_size_v<A>>());
}

template <class... T>
void make_room(const EntryLists<T...>& lists, std::size_t objects, std::size_t entries) {
    make_room(lists.start, objects);
    std::apply([&](auto&... array) { (make_room(array, entries), ...); }, lists.arrays);
}

// Room for so many further objects, bytes of names and entries in their lists.
template <IsFamily Family>
void make_room(Family& family, int objects, std::size_t name_bytes = 0, std::size_t entries = 0,
               std::size_t quadratic_entries = 0) {
    std::apply([&](auto... array) { (make_room(family.*array, objects), ...); }, arrays_of(family));
    const std::size_t counts[] = {entries, quadratic_entries};
    std::size_t at = 0;
    std::apply([&](const auto&... lists) { (make_room(lists, objects, counts[at++]), ...); }, lists_of(family));
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
    make_room(grown, objects, name_bytes + (family.size() == 0 ? 0 : added.names.num_bytes()));
    for_each_pair(lists_of(grown), lists_of(added), [&](const auto& to, const auto& from) {
        make_room(to, objects, &grown == &added ? 0 : std::get<0>(from.arrays).size());
    });
    family.optional.for_each([&](std::vector<double>& values) { make_room(values, added.size() + more); });
}

template <class... T>
void append(const EntryLists<T...>& lists, const EntryLists<T...>& added) noexcept {
    const std::int64_t shift = lists.start.back();
    for_each_pair(lists.arrays, added.arrays,
                  [](auto& to, const auto& from) { to.insert(to.end(), from.begin(), from.end()); });
    for (std::size_t i = 1; i < added.start.size(); ++i) lists.start.push_back(added.start[i] + shift);
}

template <class... T>
void swap(const EntryLists<T...>& lists, const EntryLists<T...>& other) noexcept {
    lists.start.swap(other.start);
    for_each_pair(lists.arrays, other.arrays, [](auto& one, auto& another) { one.swap(another); });
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
    for_each_pair(lists_of(family), lists_of(added), [&](const auto& to, const auto& from) {
        if (takes_over)
            swap(to, from);
        else
            append(to, from);
    });
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

template <class... T>
void compact(const EntryLists<T...>& lists, const std::vector<char>& keep) noexcept {
    std::vector<std::int64_t>& start = lists.start;
    std::int64_t to = 0;
    std::size_t next = 0;
    for (std::size_t i = 0; i < keep.size(); ++i) {
        const std::int64_t first = start[i], length = start[i + 1] - first;
        if (!keep[i]) continue;
        std::apply([&](auto&... array) { (std::copy_n(array.begin() + first, length, array.begin() + to), ...); },
                   lists.arrays);
        start[next++] = to;  // not above i, so the starts still to be read stay
        to += length;
    }
    start.resize(next + 1);
    start[next] = to;
    std::apply([&](auto&... array) { (array.resize(to), ...); }, lists.arrays);
}

// Gives the columns their new numbers; entries of a column whose number is negative are dropped.
void renumber(SparseRows& rows, const std::vector<int>& number) noexcept;
void renumber(QuadRows& rows, const std::vector<int>& number) noexcept;
void renumber(SparseVector& vector, const std::vector<int>& number) noexcept;
void renumber(QuadTerms& terms, const std::vector<int>& number) noexcept;

// Keeps the objects with keep[i] != 0, in order.
template <IsFamily Family>
void compact(Family& family, const std::vector<char>& keep) noexcept {
    std::apply([&](const auto&... lists) { (compact(lists, keep), ...); }, lists_of(family));
    std::apply([&](auto... array) { (compact(family.*array, keep), ...); }, arrays_of(family));
    family.names.compact(keep);
    family.tags.compact(keep);
    family.optional.for_each([&](std::vector<double>& values) { compact(values, keep); });
}

}  // namespace zelvan
