#include "OpenElements.h"

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
    const auto found = m_nearest.find(named);
    return found == m_nearest.end() || found->second == none ? std::nullopt : std::optional(found->second);
}

void OpenElements::indexAll() {
    m_nextOfSameName.resize(m_indexedDepth);
    for (; m_indexedDepth < depth(); ++m_indexedDepth) {
        std::size_t next = none;
        if (m_indexedDepth > 0) {
            std::size_t& nearest = m_nearest[name(m_indexedDepth)];
            next = std::exchange(nearest, m_indexedDepth);
        }
        m_nextOfSameName.push_back(next);
    }
}

void OpenElements::forgetTop() {
    --m_indexedDepth;
    m_nearest[name(m_indexedDepth)] = m_nextOfSameName[m_indexedDepth];
}
