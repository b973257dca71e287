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
    static constexpr std::ptrdiff_t count = 16;
    static constexpr std::ptrdiff_t length = count * flagsLength;

    /// The flags of the units from `lower() + position * flagsLength` on.
    const UnitFlags& operator[](std::ptrdiff_t position) const { return m_flags[position]; }

    /// Moves the stretch to the `length` units from `lower` on, of a text that ends at `end`. Units beyond
    /// the end count as ends of everything.
    void move(const char16_t* units, std::ptrdiff_t lower, std::ptrdiff_t end);

private:
    std::array<UnitFlags, count> m_flags;
};
