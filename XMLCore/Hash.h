#pragma once

#include <cstddef>
#include <functional>

/// One hash of all `fields`, in order. The specializations of `std::hash` for plain values use it.
template <class... Fields>
std::size_t hashOf(const Fields&... fields) {
    std::size_t hash = 0;
    ((hash = (hash ^ std::hash<Fields>()(fields)) * 0x9E3779B97F4A7C15U, hash ^= hash >> 32), ...);
    return hash;
}

/// One hash of all items of `list`, in order.
template <class List>
std::size_t hashOfList(const List& list) {
    std::size_t hash = 0;
    for (const auto& item : list) {
        hash = hashOf(hash, item);
    }
    return hash;
}
