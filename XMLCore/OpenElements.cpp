#include "OpenElements.h"

#include <utility>

std::optional<std::size_t> OpenElements::nearest(std::u16string_view named) {
    constexpr std::size_t comparedOneByOne = 16;
    std::size_t position = depth() - 1;
    for (std::size_t compared = 0; position > 0 && compared < comparedOneByOne; --position, ++compared) {
        if (name(position) == named) {
            return position;
        }
    }
    if (position == 0) {
        return std::nullopt;
    }
    indexAll();
    const auto number = m_names.find(named);
    const std::uint32_t nearest = number ? m_nearest[*number] : none;
    return nearest == none ? std::nullopt : std::optional<std::size_t>(nearest);
}

void OpenElements::indexAll() {
    while (m_indexed.size() < depth()) {
        const auto position = static_cast<std::uint32_t>(m_indexed.size());
        const std::uint32_t number = m_names.number(m_elements[position].name);
        if (number == m_nearest.size()) {
            m_nearest.push_back(none);
        }
        // The document, at position 0, must not be found.
        m_indexed.push_back({number, position == 0 ? none : std::exchange(m_nearest[number], position)});
    }
}

void OpenElements::forgetTop() {
    const Indexed top = m_indexed.back();
    m_indexed.pop_back();
    m_nearest[top.name] = top.nextOfSameName;
}
