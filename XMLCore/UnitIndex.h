#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// The classes of 64 consecutive units, one bit per unit; the lowest bit is that of the first unit.
struct UnitFlags {
    std::uint64_t markup = 0;   ///< `<` or `&`.
    std::uint64_t nameEnd = 0;  ///< Any unit that cannot be part of a name.
    std::uint64_t valueEnd = 0; ///< `"`, `'` or `<`.
    std::uint64_t content = 0;  ///< Any unit that is not white space.
};

/// The flags of a part of a text, computed ahead of the lexer. So the lexer finds the end of a token with a
/// shift and a bit count, and need not wait for vector comparisons.
class UnitIndex {
public:
    static constexpr std::ptrdiff_t flagsLength = 64; ///< Units per `UnitFlags`.
    static constexpr std::ptrdiff_t capacity = 16;    ///< The maximum number of `UnitFlags`.

    /// The flags, in order, each for `flagsLength` units.
    const UnitFlags* begin() const { return m_flags.data(); }
    const UnitFlags* end() const { return m_flags.data() + m_count; }

    /// Computes `count` flags, 1 to `capacity`, for the units from offset `lower` on of a text that ends at
    /// offset `end`. Units beyond the end have all flags set. Flags after the first that reaches beyond the
    /// end are unspecified.
    void move(const char16_t* units, std::ptrdiff_t lower, std::ptrdiff_t end, std::ptrdiff_t count);

private:
    std::array<UnitFlags, capacity> m_flags;
    std::ptrdiff_t m_count = 1;
};
