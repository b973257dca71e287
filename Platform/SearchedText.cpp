#include "SearchedText.h"

#include "RopeFlattener.h"
#include "UnitScan.h"

#include <memory>

std::u16string_view SearchedText::wellFormed() {
    if (m_isReady) {
        return m_wellFormed.units();
    }
    // Ready only in the end: there may be too little memory.
    SourceText flat = RopeFlattener().flattened(m_rope);
    const std::u16string_view units = flat.units();
    const auto end = static_cast<UnitScan::Position>(units.size());
    UnitScan::Position lone = UnitScan::findLoneSurrogate(units.data(), 0, end);
    if (lone == end) {
        m_wellFormed = std::move(flat);
        m_isReady = true;
        return m_wellFormed.units();
    }
    const auto copy = std::make_shared_for_overwrite<char16_t[]>(units.size());
    m_rope.copyTo(m_rope.fullRange(), copy.get());
    for (; lone < end; lone = UnitScan::findLoneSurrogate(units.data(), lone + 1, end)) {
        copy[lone] = substitute;
    }
    m_wellFormed = SourceText(copy, units.size());
    m_isReady = true;
    return m_wellFormed.units();
}
