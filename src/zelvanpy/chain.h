#pragma once
// Long sums by `+` as chains of blocks that are never changed again. A block `E` has the field tail: the next older
// block, owned, null at the end.

#include <utility>
#include <vector>

#include "pybase.h"

namespace zelvanpy {

constexpr std::uint32_t kBlockTerms = 200;  // a sum by `+` starts a new block at this size

// Whether e is one of the older blocks of `of`. A new object, of which there is one reference, is none.
template <class E>
bool is_older_block(E* e, E* of) {
    if (Py_REFCNT(e) == 1) return false;
    E* block = of->tail;
    while (block && block != e) block = block->tail;
    return block;
}

// Gives a chain back block by block: a long one must not use the C stack.
template <class E>
void release_tail(E* tail, PyTypeObject* type) {
    while (tail && Py_REFCNT(tail) == 1 && Py_TYPE(tail) == type) {
        E* next = std::exchange(tail->tail, nullptr);
        Py_DECREF(tail);
        tail = next;
    }
    Py_XDECREF(tail);
}

// The blocks of a chain, oldest first.
template <class E>
std::vector<E*> blocks_of(E* e) {
    std::vector<E*> blocks;
    for (E* block = e; block; block = block->tail) blocks.push_back(block);
    return {blocks.rbegin(), blocks.rend()};
}

template <class E>
std::size_t chain_size(const std::vector<E*>& blocks) {
    std::size_t terms = 0;
    for (const E* block : blocks) terms += block->size;
    return terms;
}

}  // namespace zelvanpy
