#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// What 64 units in a row are to the lexer, a bit a unit, that of the first lowest.
struct UnitFlags {
    std::uint64_t markup = 0;   ///< `<` or `&`.
    std::uint64_t nameEnd = 0;  ///< No unit of a name.
    std::uint64_t valueEnd = 0; ///< `"`, `'` or `<`.
    std::uint64_t content = 0;  ///< No white space.
};

/// The flags of a stretch of a text, looked up ahead of the lexer, so that the way from one token's end to
/// the next is a shift and a count instead of a wait for vector comparisons.
class UnitIndex {
public:
    static constexpr std::ptrdiff_t flagsLength = 64;
    static constexpr std::ptrdiff_t capacity = 16;

    /// The flags of the stretch, in order, each of `flagsLength` units.
    const UnitFlags* begin() const { return m_flags.data(); }
    const UnitFlags* end() const { return m_flags.data() + m_count; }

    /// Moves the stretch to the units from `lower` on that `count` flags tell of, 1 to `capacity`, of a text
    /// that ends at `end`. What is beyond the end counts as an end of everything.
    void move(const char16_t* units, std::ptrdiff_t lower, std::ptrdiff_t end, std::ptrdiff_t count);

private:
    std::array<UnitFlags, capacity> m_flags;
    std::ptrdiff_t m_count = 1;
};
