#include "LineIndex.h"

#include "UnitScan.h"

#include <algorithm>
#include <limits>

LineIndex::LineIndex(const SourceText& text) {
    constexpr std::size_t expectedLineLength = 40;
    starts.reserve(text.count() / expectedLineLength + 1);
    const char16_t* const begin = text.units().data();
    const char16_t* const end = begin + text.count();
    const char16_t* unit = begin;
    for (; end - unit >= UnitVector::lanes; unit += UnitVector::lanes) {
        UnitMask lineFeeds = (UnitVector::load(unit) == UnitVector::all(u'\n')).mask();
        for (; lineFeeds.any(); lineFeeds.clearFirst()) {
            starts.push_back(static_cast<Offset>(unit + lineFeeds.first() + 1 - begin));
        }
    }
    for (; unit != end; ++unit) {
        if (*unit == u'\n') {
            starts.push_back(static_cast<Offset>(unit + 1 - begin));
        }
    }
}

std::size_t LineIndex::line(std::int64_t at) const {
    const auto offset =
        static_cast<Offset>(std::clamp<std::int64_t>(at, 0, std::numeric_limits<Offset>::max()));
    return static_cast<std::size_t>(std::ranges::upper_bound(starts, offset) - starts.begin() - 1);
}

Offset LineIndex::start(std::int64_t ofLine) const {
    const auto last = static_cast<std::int64_t>(lineCount()) - 1;
    return starts[static_cast<std::size_t>(std::clamp<std::int64_t>(ofLine, 0, last))];
}
