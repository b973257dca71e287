#include "UnitIndex.h"

#include "UnitClassifier.h"

#include <algorithm>

void UnitIndex::move(const char16_t* units, std::ptrdiff_t lower, std::ptrdiff_t end, std::ptrdiff_t count) {
    static const UnitClassifier::Function classify = UnitClassifier::quickest();
    m_count = count;
    const std::ptrdiff_t whole = std::min((end - lower) / flagsLength, count);
    classify(units + lower, std::span(m_flags).first(whole));
    if (whole < count) {
        // The padding ends every token at the end of the text, so later flags are never used.
        std::array<char16_t, flagsLength> padded;
        padded.fill(u'<');
        std::copy(units + lower + whole * flagsLength, units + end, padded.begin());
        classify(padded.data(), std::span(m_flags).subspan(whole, 1));
    }
}
