#include "NameSimilarity.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr std::size_t shortName = 2;
constexpr std::size_t mediumName = 5;

constexpr char16_t lowercase(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

bool isSame(char16_t first, char16_t second) { return lowercase(first) == lowercase(second); }

std::size_t slips(std::size_t length) {
    if (length <= shortName) {
        return 0;
    }
    return length <= mediumName ? 1 : 2;
}

/// Whether at most `slips` typing errors turn one name into the other. After each error there are four ways
/// to continue, and there are at most two errors, so each unit is read a bounded number of times.
bool differByAtMost(std::size_t slips, std::u16string_view first, std::u16string_view second) {
    const auto same = std::ranges::mismatch(first, second, isSame).in1 - first.begin();
    first.remove_prefix(static_cast<std::size_t>(same));
    second.remove_prefix(static_cast<std::size_t>(same));
    if (first.empty() || second.empty()) {
        return first.size() + second.size() <= slips;
    }
    if (slips == 0) {
        return false;
    }
    const bool isExchanged =
        first.size() > 1 && second.size() > 1 && isSame(first[0], second[1]) && isSame(first[1], second[0]);
    return (isExchanged && differByAtMost(slips - 1, first.substr(2), second.substr(2))) ||
           differByAtMost(slips - 1, first.substr(1), second.substr(1)) ||
           differByAtMost(slips - 1, first.substr(1), second) ||
           differByAtMost(slips - 1, first, second.substr(1));
}

} // namespace

bool NameSimilarity::areClose(std::u16string_view first, std::u16string_view second) {
    const auto [shorter, longer] = std::ranges::minmax({first.size(), second.size()});
    const std::size_t allowed = slips(longer);
    return longer - shorter <= allowed && differByAtMost(allowed, first, second);
}
