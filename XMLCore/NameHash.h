#pragma once

#include <cstddef>
#include <string_view>

/// Hashes names from documents. The seed is random in every process, so that no document can be made whose
/// names all collide.
struct NameHash {
    std::size_t operator()(std::u16string_view name) const noexcept;
};
