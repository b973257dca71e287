#pragma once

#include <cstddef>
#include <string_view>

/// Hashes names taken from documents. Seeded anew in every process, so that nobody can write a document
/// whose names all collide.
struct NameHash {
    std::size_t operator()(std::u16string_view name) const noexcept;
};
