#include "CaseFolding.h"

#include <QChar>

#include <algorithm>
#include <array>

namespace {

constexpr std::size_t unitCount = 0x10000;

const std::array<char16_t, unitCount>& table() {
    static const std::array<char16_t, unitCount> table = [] {
        std::array<char16_t, unitCount> made{};
        for (std::size_t unit = 0; unit < unitCount; ++unit) {
            made[unit] = QChar(static_cast<char16_t>(unit)).toCaseFolded().unicode();
        }
        return made;
    }();
    return table;
}

} // namespace

char16_t CaseFolding::folded(char16_t unit) { return table()[unit]; }

std::u16string CaseFolding::folded(std::u16string_view units) {
    std::u16string result(units);
    std::ranges::transform(result, result.begin(), [](char16_t unit) { return folded(unit); });
    return result;
}

std::u16string CaseFolding::variants(char16_t foldedUnit) {
    std::u16string variants;
    for (std::size_t unit = 0; unit < unitCount; ++unit) {
        if (table()[unit] == foldedUnit) {
            variants += static_cast<char16_t>(unit);
        }
    }
    return variants;
}
