#pragma once

#include "SourceRange.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// Numbers the distinct names of a text from 0 on, in order of first appearance.
class NameTable {
public:
    /// `units` is the text that the names lie in; borrowed.
    explicit NameTable(std::u16string_view units) : m_units(units) {}

    /// The number of `name`; a new name gets the next number.
    std::uint32_t number(SourceRange name);

    /// The number of the name with the units of `name`; none if the table does not contain it.
    std::optional<std::uint32_t> find(std::u16string_view name) const;

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t number = unused;
    };
    static constexpr std::uint32_t unused = 0xFFFFFFFF;

    std::u16string_view units(SourceRange name) const { return m_units.substr(name.lower, name.length()); }

    /// The index of the slot of `name`, or of the unused slot in which it belongs.
    std::size_t slot(std::u16string_view name, std::uint32_t hash) const;
    void grow();

    std::u16string_view m_units;
    std::vector<SourceRange> m_names;
    std::vector<Slot> m_slots; ///< Open addressing: a power of two of slots, at most half of them in use.
};
