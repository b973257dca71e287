#include "SearchedText.h"

#include "RopeFlattener.h"
#include "UnitScan.h"

#include <memory>

std::u16string_view SearchedText::wellFormed() {
    if (m_isReady) {
        return m_wellFormed.units();
    }
    m_isReady = true;
    m_wellFormed = RopeFlattener().flattened(m_rope);
    const std::u16string_view units = m_wellFormed.units();
    const auto end = static_cast<UnitScan::Position>(units.size());
    UnitScan::Position lone = UnitScan::findLoneSurrogate(units.data(), 0, end);
    if (lone == end) {
        return units;
    }
    const auto copy = std::make_shared_for_overwrite<char16_t[]>(units.size());
    m_rope.copyTo(m_rope.fullRange(), copy.get());
    for (; lone < end; lone = UnitScan::findLoneSurrogate(units.data(), lone + 1, end)) {
        copy[lone] = substitute;
    }
    m_wellFormed = SourceText(copy, units.size());
    return m_wellFormed.units();
}
