#include "TextSums.h"

#include "UnitVector.h"

#include <algorithm>

TextSums TextSums::of(std::u16string_view stretch) {
    TextSums sums;
    sums.units = static_cast<Offset>(stretch.size());
    const char16_t* const begin = stretch.data();
    const char16_t* const end = begin + stretch.size();
    const char16_t* lineStart = begin;
    const auto endLine = [&](const char16_t* lineFeed) {
        const auto length = static_cast<Offset>(lineFeed - lineStart);
        if (sums.lineFeeds++ == 0) {
            sums.firstLine = length;
        }
        sums.longestLine = std::max(sums.longestLine, length);
        lineStart = lineFeed + 1;
    };

    const char16_t* unit = begin;
    for (; end - unit >= UnitVector::lanes; unit += UnitVector::lanes) {
        const UnitVector units = UnitVector::load(unit);
        const UnitMask outside = ~(units - UnitVector::all(u' ')).atMost(UnitVector::all(u'~' - u' ')).mask();
        if (outside.any()) {
            sums.outsidePrintableASCII += static_cast<Offset>(outside.count());
            for (UnitMask feeds = (units == UnitVector::all(u'\n')).mask(); feeds.any(); feeds.clearFirst()) {
                endLine(unit + feeds.first());
            }
        }
    }
    for (; unit != end; ++unit) {
        sums.outsidePrintableASCII += *unit < u' ' || *unit > u'~' ? 1 : 0;
        if (*unit == u'\n') {
            endLine(unit);
        }
    }

    sums.lastLine = static_cast<Offset>(end - lineStart);
    sums.longestLine = std::max(sums.longestLine, sums.lastLine);
    if (sums.lineFeeds == 0) {
        sums.firstLine = sums.units;
    }
    return sums;
}

TextSums& TextSums::operator+=(const TextSums& next) {
    longestLine = std::max({longestLine, next.longestLine, lastLine + next.firstLine});
    if (lineFeeds == 0) {
        firstLine += next.firstLine;
    }
    lastLine = next.lineFeeds == 0 ? lastLine + next.units : next.lastLine;
    units += next.units;
    lineFeeds += next.lineFeeds;
    outsidePrintableASCII += next.outsidePrintableASCII;
    return *this;
}
