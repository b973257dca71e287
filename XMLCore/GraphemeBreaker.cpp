#include "GraphemeBreaker.h"

#include "Precondition.h"

#include <array>

namespace GraphemeBreaker {

namespace {

using enum UnicodeProperties::GraphemeBreak;
using UnicodeProperties::graphemeBreak;
using UnicodeProperties::GraphemeBreak;

/// What the properties of two adjacent scalars say about the position between them.
enum class Junction : std::uint8_t {
    boundary,
    joined,
    joinedInEmoji, ///< Joined if a pictograph, marks and the joiner come before.
    joinedInFlag,  ///< Joined if the second half of a flag comes next.
};

constexpr bool isControl(GraphemeBreak property) {
    return property == control || property == carriageReturn || property == lineFeed;
}

constexpr bool isJoinedHangul(GraphemeBreak before, GraphemeBreak after) {
    switch (before) {
    case hangulL:
        return after == hangulL || after == hangulV || after == hangulLV || after == hangulLVT;
    case hangulV:
    case hangulLV:
        return after == hangulV || after == hangulT;
    case hangulT:
    case hangulLVT:
        return after == hangulT;
    default:
        return false;
    }
}

constexpr Junction makeJunction(GraphemeBreak before, GraphemeBreak after) {
    if (before == carriageReturn && after == lineFeed) {
        return Junction::joined;
    }
    if (isControl(before) || isControl(after)) {
        return Junction::boundary;
    }
    if (after == extend || after == zeroWidthJoiner || after == spacingMark || before == prepend ||
        isJoinedHangul(before, after)) {
        return Junction::joined;
    }
    if (before == zeroWidthJoiner && after == pictographic) {
        return Junction::joinedInEmoji;
    }
    if (before == regionalIndicator && after == regionalIndicator) {
        return Junction::joinedInFlag;
    }
    return Junction::boundary;
}

constexpr std::size_t propertyCount = static_cast<std::size_t>(pictographic) + 1;

constexpr auto junctions = [] {
    std::array<std::array<Junction, propertyCount>, propertyCount> table{};
    for (std::size_t before = 0; before < propertyCount; ++before) {
        for (std::size_t after = 0; after < propertyCount; ++after) {
            table[before][after] =
                makeJunction(static_cast<GraphemeBreak>(before), static_cast<GraphemeBreak>(after));
        }
    }
    return table;
}();

Junction junction(GraphemeBreak before, GraphemeBreak after) {
    return junctions[static_cast<std::size_t>(before)][static_cast<std::size_t>(after)];
}

/// Whether the units can be joined only if they are CR and LF. This holds for all units of plain Latin text.
bool areUnremarkable(char16_t before, char16_t after) {
    return before < UnicodeProperties::Tables::firstRemarkable &&
           after < UnicodeProperties::Tables::firstRemarkable;
}

/// Whether a pictograph, followed by any number of marks, ends at `at`.
bool endsPictograph(const char16_t* begin, const char16_t* at) {
    while (at != begin) {
        const char32_t scalar = UTF16::scalarBefore(begin, at);
        const GraphemeBreak property = graphemeBreak(scalar);
        if (property != extend) {
            return property == pictographic;
        }
        at -= UTF16::length(scalar);
    }
    return false;
}

/// Whether the run of regional indicators that ends at `at` has an odd length, so that its last one is the
/// first half of a flag.
bool endsHalfFlag(const char16_t* begin, const char16_t* at) {
    bool isHalf = false;
    while (at != begin) {
        const char32_t scalar = UTF16::scalarBefore(begin, at);
        if (graphemeBreak(scalar) != regionalIndicator) {
            break;
        }
        isHalf = !isHalf;
        at -= UTF16::length(scalar);
    }
    return isHalf;
}

} // namespace

bool isBoundary(std::u16string_view text, std::size_t at) {
    precondition(at <= text.size(), "an offset lies inside the text");
    if (at == 0 || at == text.size()) {
        return true;
    }
    if (areUnremarkable(text[at - 1], text[at])) {
        return text[at - 1] != u'\r' || text[at] != u'\n';
    }
    const char16_t* const begin = text.data();
    const char16_t* const place = begin + at;
    if (UTF16::isHighSurrogate(place[-1]) && UTF16::isLowSurrogate(*place)) {
        return false;
    }
    const GraphemeBreak before = graphemeBreak(UTF16::scalarBefore(begin, place));
    const GraphemeBreak after = graphemeBreak(UTF16::scalarAt(place, begin + text.size()));
    switch (junction(before, after)) {
    case Junction::joinedInEmoji:
        return !endsPictograph(begin, place - 1);
    case Junction::joinedInFlag:
        return !endsHalfFlag(begin, place);
    case Junction::joined:
        return false;
    case Junction::boundary:
        break;
    }
    return true;
}

std::size_t nextBoundary(std::u16string_view text, std::size_t from) {
    if (!isBoundary(text, from)) {
        from = previousBoundary(text, from);
    }
    if (from == text.size()) {
        return from;
    }
    const char16_t* const begin = text.data();
    return static_cast<std::size_t>(characterEnd(begin + from, begin + text.size()) - begin);
}

std::size_t previousBoundary(std::u16string_view text, std::size_t from) {
    precondition(from <= text.size(), "an offset lies inside the text");
    if (from == 0) {
        return 0;
    }
    do {
        --from;
    } while (!isBoundary(text, from));
    return from;
}

bool BoundaryFinder::startsCharacter(GraphemeBreak property) {
    const Junction junctionHere = junction(m_before, property);
    const bool isJoined = junctionHere == Junction::joined ||
                          (junctionHere == Junction::joinedInEmoji && m_emoji == Emoji::joiner) ||
                          (junctionHere == Junction::joinedInFlag && m_isHalfFlag);
    if (property == pictographic) {
        m_emoji = Emoji::pictograph;
    } else if (property == zeroWidthJoiner && m_emoji == Emoji::pictograph) {
        m_emoji = Emoji::joiner;
    } else if (property != extend || m_emoji == Emoji::joiner) {
        m_emoji = Emoji::none;
    }
    m_isHalfFlag = property == regionalIndicator && !(m_before == regionalIndicator && m_isHalfFlag);
    m_before = property;
    return !isJoined;
}

const char16_t* characterEnd(const char16_t* from, const char16_t* end) {
    if (end - from > 1 && areUnremarkable(from[0], from[1])) {
        return from + (from[0] == u'\r' && from[1] == u'\n' ? 2 : 1);
    }
    BoundaryFinder finder;
    char32_t scalar = UTF16::scalarAt(from, end);
    finder.startsCharacter(scalar);
    do {
        from += UTF16::length(scalar);
        if (from == end) {
            break;
        }
        scalar = UTF16::scalarAt(from, end);
    } while (!finder.startsCharacter(scalar));
    return from;
}

} // namespace GraphemeBreaker
