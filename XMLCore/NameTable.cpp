#include "NameTable.h"

#include "NameHash.h"

#include <algorithm>
#include <utility>

namespace {

std::uint32_t hashOfName(std::u16string_view name) { return static_cast<std::uint32_t>(NameHash()(name)); }

} // namespace

std::uint32_t NameTable::number(SourceRange name) {
    if (m_names.size() * 2 >= m_slots.size()) {
        grow();
    }
    const std::uint32_t hash = hashOfName(units(name));
    Slot& found = m_slots[slot(units(name), hash)];
    if (found.number == unused) {
        found = {hash, static_cast<std::uint32_t>(m_names.size())};
        m_names.push_back(name);
    }
    return found.number;
}

std::optional<std::uint32_t> NameTable::find(std::u16string_view name) const {
    if (m_slots.empty()) {
        return std::nullopt;
    }
    const Slot& found = m_slots[slot(name, hashOfName(name))];
    return found.number == unused ? std::nullopt : std::optional(found.number);
}

std::size_t NameTable::slot(std::u16string_view name, std::uint32_t hash) const {
    const std::size_t mask = m_slots.size() - 1;
    std::size_t at = hash & mask;
    while (m_slots[at].number != unused &&
           (m_slots[at].hash != hash || units(m_names[m_slots[at].number]) != name)) {
        at = (at + 1) & mask;
    }
    return at;
}

void NameTable::grow() {
    constexpr std::size_t smallest = 64;
    const std::vector<Slot> old =
        std::exchange(m_slots, std::vector<Slot>(std::max(smallest, m_slots.size() * 2)));
    const std::size_t mask = m_slots.size() - 1;
    for (const Slot& used : old) {
        if (used.number == unused) {
            continue;
        }
        std::size_t at = used.hash & mask;
        while (m_slots[at].number != unused) {
            at = (at + 1) & mask;
        }
        m_slots[at] = used;
    }
}
