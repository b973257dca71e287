#include "SourceText.h"

#include "UTF16.h"
#include "UnitScanBackward.h"

#include <algorithm>
#include <limits>

SourceText::SourceText(std::u16string_view units) : m_count(units.size()) {
    precondition(units.size() <= std::numeric_limits<Offset>::max(), "a text has at most 4294967295 units");
    auto storage = std::make_shared_for_overwrite<char16_t[]>(units.size());
    std::ranges::copy(units, storage.get());
    m_storage = std::move(storage);
}

SourceText::SourceText(std::shared_ptr<const char16_t[]> storage, std::size_t count)
    : m_storage(std::move(storage)), m_count(count) {
    precondition(count <= std::numeric_limits<Offset>::max(), "a text has at most 4294967295 units");
}

std::u16string_view SourceText::units(SourceRange range) const {
    precondition(range.upper <= m_count, "the range lies inside the text");
    return units().substr(range.lower, range.length());
}

std::u16string SourceText::string() const { return repaired(units()); }

std::u16string SourceText::string(SourceRange range) const { return repaired(units(range)); }

bool SourceText::isWhitespace(SourceRange range) const {
    const std::u16string_view part = units(range);
    const auto end = static_cast<std::ptrdiff_t>(part.size());
    return UnitScan::findNonWhitespace(part.data(), 0, end) == end;
}

bool SourceText::hasPrefix(std::u16string_view prefix, Offset at) const {
    return at <= m_count && units().substr(at).starts_with(prefix);
}

bool SourceText::equals(SourceRange first, SourceRange second) const { return units(first) == units(second); }

bool SourceText::equals(SourceRange range, std::u16string_view string) const {
    return units(range) == string;
}

Offset SourceText::lineStart(Offset at) const {
    using namespace UnitScanBackward;
    const auto end = static_cast<Position>(std::min<std::size_t>(at, m_count));
    const Position lineFeed = findLastAny(m_storage.get(), 0, end, u'\n');
    return lineFeed == nowhere ? 0 : static_cast<Offset>(lineFeed + 1);
}

Offset SourceText::lineEnd(Offset at) const {
    const std::u16string_view all = units();
    const auto textEnd = static_cast<std::ptrdiff_t>(m_count);
    const std::ptrdiff_t from = std::min<std::ptrdiff_t>(at, textEnd);
    const std::ptrdiff_t end = UnitScan::findAny(all.data(), from, textEnd, u'\n');
    const bool mayFollowCarriageReturn = end == textEnd ? end > 0 : end > from;
    return static_cast<Offset>(mayFollowCarriageReturn && all[end - 1] == u'\r' ? end - 1 : end);
}

std::u16string SourceText::indentation(Offset ofLineAt) const {
    const std::u16string_view line = units().substr(lineStart(ofLineAt));
    const std::size_t end = line.find_first_not_of(u" \t");
    return std::u16string(line.substr(0, end));
}

std::u16string_view SourceText::lineEnding() const {
    const std::u16string_view all = units();
    const auto end = static_cast<std::ptrdiff_t>(m_count);
    const std::ptrdiff_t lineFeed = UnitScan::findAny(all.data(), 0, end, u'\n');
    return lineFeed != end && lineFeed > 0 && all[lineFeed - 1] == u'\r' ? u"\r\n" : u"\n";
}

std::u16string repaired(std::u16string_view units) {
    std::u16string string(units);
    for (std::size_t i = 0; i < string.size(); ++i) {
        if (UTF16::isHighSurrogate(string[i]) && i + 1 < string.size() &&
            UTF16::isLowSurrogate(string[i + 1])) {
            ++i;
        } else if (UTF16::isSurrogate(string[i])) {
            string[i] = u'\uFFFD';
        }
    }
    return string;
}
