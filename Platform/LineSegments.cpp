#include "LineSegments.h"

#include "GraphemeBreaker.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace {

constexpr Offset segmentUnits = 256;
constexpr Offset blockUnits = 16'384; ///< What is looked at in one go.
constexpr Offset longestCharacter = 65'536;
constexpr Offset lookaround = 256;
constexpr std::size_t mergedParts = 128; ///< Of two blocks that become one.
constexpr int samples = 16;
constexpr int longestResync = 64; ///< Segments after an edit that are cut anew at most.

bool isPrintableASCII(char16_t unit) { return unit >= u' ' && unit <= u'~'; }

Offset sum(Offset offset, std::int64_t change) { return static_cast<Offset>(offset + change); }

/// Multiples of 1/64, as fonts have them, add up without loss.
double rounded(double width) { return std::round(width * 64) / 64; }

} // namespace

LineSegments::LineSegments(const Rope& line, CharacterAdvances& advances)
    : m_line(line), m_advances(&advances),
      m_average(measureAverage()), m_blocks{withoutParts(0, line.size())} {}

double LineSegments::width() const {
    double width = 0;
    for (const Block& block : m_blocks) {
        width += block.width;
    }
    return width;
}

// Finding

LineSegments::Segment LineSegments::segmentHolding(Offset at) {
    for (;;) {
        const Place place = placeHolding(at);
        if (m_blocks[place.block].kind != Kind::unseen || m_blocks[place.block].units == 0) {
            return segment(place, at);
        }
        look(place, at);
    }
}

LineSegments::Segment LineSegments::segmentAt(double x) {
    for (;;) {
        const Place place = placeAt(x);
        const Block& block = m_blocks[place.block];
        if (block.kind != Kind::unseen || block.units == 0) {
            return segmentAtX(place, x);
        }
        const double share = block.width > 0 ? std::clamp((x - place.left) / block.width, 0.0, 1.0) : 0;
        const auto inside = static_cast<Offset>(share * block.units);
        look(place, place.start + std::min(inside, block.units - 1));
    }
}

LineSegments::Place LineSegments::placeHolding(Offset at) const {
    Place place;
    while (place.block + 1 < m_blocks.size() && at - place.start >= m_blocks[place.block].units) {
        place.start += m_blocks[place.block].units;
        place.left += m_blocks[place.block++].width;
    }
    return place;
}

LineSegments::Place LineSegments::placeAt(double x) const {
    Place place;
    while (place.block + 1 < m_blocks.size() && x >= place.left + m_blocks[place.block].width) {
        place.start += m_blocks[place.block].units;
        place.left += m_blocks[place.block++].width;
    }
    return place;
}

LineSegments::Segment LineSegments::segment(const Place& place, Offset holding) const {
    const Block& block = m_blocks[place.block];
    if (block.kind != Kind::segmented) {
        const Offset last = block.units == 0 ? 0 : (block.units - 1) / segmentUnits;
        const Offset skipped = std::min((holding - place.start) / segmentUnits, last) * segmentUnits;
        const Offset units = std::min(segmentUnits, block.units - skipped);
        const double column = m_advances->column();
        const Offset start = place.start + skipped;
        return {SourceRange::unchecked(start, start + units), place.left + skipped * column, units * column};
    }
    Offset start = place.start;
    double left = place.left;
    std::size_t part = 0;
    for (; part + 1 < block.parts.size() && holding - start >= block.parts[part].units; ++part) {
        start += block.parts[part].units;
        left += static_cast<double>(block.parts[part].width);
    }
    const Part& found = block.parts[part];
    return {SourceRange::unchecked(start, start + found.units), left, static_cast<double>(found.width)};
}

LineSegments::Segment LineSegments::segmentAtX(const Place& place, double x) const {
    const Block& block = m_blocks[place.block];
    if (block.kind != Kind::segmented) {
        const double columns = std::max(0.0, (x - place.left) / m_advances->column());
        const double last = block.units == 0 ? 0 : block.units - 1;
        return segment(place, place.start + static_cast<Offset>(std::min(columns, last)));
    }
    Offset start = place.start;
    double left = place.left;
    std::size_t part = 0;
    for (; part + 1 < block.parts.size() && x >= left + static_cast<double>(block.parts[part].width);
         ++part) {
        start += block.parts[part].units;
        left += static_cast<double>(block.parts[part].width);
    }
    return segment(place, start);
}

void LineSegments::setWidth(const Segment& segment, double width) {
    const Place place = placeHolding(segment.range.lower);
    Block& block = m_blocks[place.block];
    if (block.kind != Kind::segmented) {
        return;
    }
    Offset start = place.start;
    for (Part& part : block.parts) {
        if (start == segment.range.lower) {
            block.width += width - static_cast<double>(part.width);
            part.width = static_cast<float>(width);
            return;
        }
        start += part.units;
    }
}

std::vector<Offset> LineSegments::cuts() const {
    std::vector<Offset> cuts;
    Offset start = 0;
    for (const Block& block : m_blocks) {
        const auto partCount = block.kind == Kind::segmented ? block.parts.size() : 1;
        for (std::size_t part = 0; part < partCount; ++part) {
            start += block.kind == Kind::segmented ? block.parts[part].units : block.units;
            cuts.push_back(start);
        }
    }
    cuts.pop_back();
    return cuts;
}

// Looking at text

void LineSegments::look(const Place& place, Offset at) {
    const Offset start = place.start;
    const Offset end = start + m_blocks[place.block].units;
    Block whole = withoutParts(start, end);
    if (whole.kind == Kind::plain) {
        m_blocks[place.block] = std::move(whole);
        merge(place.block, place.block + 1);
        return;
    }
    Offset from = start + (at - start) / blockUnits * blockUnits;
    from = from == start ? start : std::max(start, characterStart(from));
    Block seen = scan(from, at + 1, end);
    const Offset seenEnd = from + seen.units;
    std::vector<Block> found;
    if (start < from) {
        found.push_back(withoutParts(start, from));
    }
    found.push_back(std::move(seen));
    if (seenEnd < end) {
        found.push_back(withoutParts(seenEnd, end));
    }
    const auto here = m_blocks.begin() + std::ptrdiff_t(place.block);
    const auto count = found.size();
    *here = std::move(found.front());
    m_blocks.insert(here + 1, std::make_move_iterator(found.begin() + 1),
                    std::make_move_iterator(found.end()));
    merge(place.block, place.block + count);
}

bool LineSegments::buildMore() {
    Place place;
    for (; place.block < m_blocks.size(); ++place.block) {
        const Block& block = m_blocks[place.block];
        if (block.kind == Kind::unseen && block.units > 0) {
            look(place, place.start);
            return std::ranges::any_of(m_blocks, [](const Block& left) { return left.kind == Kind::unseen; });
        }
        place.start += block.units;
        place.left += block.width;
    }
    return false;
}

/// A block that starts at `from` and holds at least the units up to `to`, rather some thousand of them.
LineSegments::Block LineSegments::scan(Offset from, Offset to, Offset end) {
    const Offset wanted = std::min(end - from, std::max(blockUnits, to - from));
    const SourceRange sought = SourceRange::unchecked(from, from + wanted);
    if (isPlain(sought) && characterStart(sought.upper) == sought.upper) {
        return withoutParts(from, sought.upper);
    }
    if (auto block = scanned(
            from, wanted, std::min(end, from + wanted + std::min(end - from - wanted, lookaround)), false)) {
        return std::move(*block);
    }
    const Offset rest = std::min(end - from - wanted, longestCharacter);
    return *scanned(from, wanted, from + wanted + rest, true);
}

/// The segments from `from` on: `length` units and the rest of the last character. None when that does not
/// end before `end` and need not, because of `isWhole`.
std::optional<LineSegments::Block> LineSegments::scanned(Offset from, Offset length, Offset end,
                                                         bool isWhole) {
    const std::u16string units = m_line.units(SourceRange::unchecked(from, end));
    const char16_t* const unitsEnd = units.data() + units.size();
    Block block;
    block.kind = Kind::segmented;
    GraphemeBreaker::BoundaryFinder finder;
    std::size_t start = 0;
    std::size_t at = 0;
    double width = 0;
    const auto cut = [&] {
        const auto partWidth = static_cast<float>(rounded(width));
        block.parts.push_back({static_cast<Offset>(at - start), partWidth});
        block.units += static_cast<Offset>(at - start);
        block.width += static_cast<double>(partWidth);
        start = at;
        width = 0;
    };
    while (at < units.size()) {
        const char32_t scalar = UTF16::scalarAt(units.data() + at, unitsEnd);
        const bool starts = finder.startsCharacter(scalar);
        if (starts && at >= length) {
            break;
        }
        // No crumb at the end, where typing would leave one with every key.
        const bool isWorthIt = at >= length || length - at >= segmentUnits / 2;
        if (starts && at - start >= segmentUnits && isWorthIt) {
            cut();
        }
        const bool counts = starts || UnicodeProperties::graphemeBreak(scalar) ==
                                          UnicodeProperties::GraphemeBreak::spacingMark;
        width = counts ? m_advances->end(width, scalar) : width;
        at += UTF16::length(scalar);
    }
    if (at == units.size() && end < m_line.size() && !isWhole && at > length) {
        return std::nullopt;
    }
    if (start < at) {
        cut();
    }
    return block;
}

LineSegments::Block LineSegments::withoutParts(Offset from, Offset to) const {
    Block block;
    block.units = to - from;
    block.kind = isPlain(SourceRange::unchecked(from, to)) ? Kind::plain : Kind::unseen;
    block.width =
        block.kind == Kind::plain ? block.units * m_advances->column() : rounded(block.units * m_average);
    return block;
}

bool LineSegments::isPlain(SourceRange range) const {
    return m_advances->isFixed() && m_line.unitsOutsidePrintableASCII(range) == 0;
}

/// The start of the character that the unit at `at` belongs to, sought no farther back than a character
/// may reach.
Offset LineSegments::characterStart(Offset at) const {
    if (at == 0 || at >= m_line.size()) {
        return std::min(at, m_line.size());
    }
    if (isPrintableASCII(m_line.unit(at)) && isPrintableASCII(m_line.unit(at - 1))) {
        return at;
    }
    for (Offset reach = lookaround;; reach *= 16) {
        const Offset lower = at - std::min(at, reach);
        const Offset upper = at + std::min(m_line.size() - at, lookaround);
        const std::u16string units = m_line.units(SourceRange::unchecked(lower, upper));
        const std::size_t inside = at - lower;
        if (GraphemeBreaker::isBoundary(units, inside)) {
            return at;
        }
        const std::size_t start = GraphemeBreaker::previousBoundary(units, inside);
        if (start > 0 || lower == 0) {
            return lower + static_cast<Offset>(start);
        }
        if (reach >= longestCharacter) {
            return at;
        }
    }
}

/// The width of a unit in the mean of a few places all over the line.
double LineSegments::measureAverage() {
    if (isPlain(m_line.fullRange()) || m_line.isEmpty()) {
        return m_advances->column();
    }
    double width = 0;
    Offset units = 0;
    for (int sample = 0; sample < samples; ++sample) {
        const auto from =
            characterStart(static_cast<Offset>(std::uint64_t(m_line.size()) * sample / samples));
        const Offset to = from + std::min(segmentUnits, m_line.size() - from);
        const Block block = *scanned(from, to - from, to, true);
        width += block.width;
        units += block.units;
    }
    return units > 0 ? width / units : m_advances->column();
}

// Edits

void LineSegments::edit(const Rope& line, SourceRange edited, std::int64_t changeInLength) {
    const Offset oldUpper = sum(edited.upper, -changeInLength);
    if (m_line.isEmpty() || line.isEmpty()) {
        m_line = line;
        m_blocks.assign(1, withoutParts(0, line.size()));
        return;
    }
    m_line = line;
    const Offset lower = cutBefore(edited.lower);
    Offset upper = oldUpper;
    Offset newUpper = 0;
    for (int round = 0; round < longestResync; ++round) {
        upper = cutBehind(upper, static_cast<Offset>(changeInLength));
        newUpper = sum(upper, changeInLength);
        if (characterStart(newUpper) == newUpper) {
            break;
        }
    }
    // Nobody looks at the middle of an unseen block because of an edit there.
    const std::size_t first = split(lower);
    const std::size_t last = split(upper);
    const bool isUnseen = first > 0 && m_blocks[first - 1].kind == Kind::unseen && last < m_blocks.size() &&
                          m_blocks[last].kind == Kind::unseen;
    std::vector<Block> found = blocks(lower, newUpper, isUnseen ? Kind::unseen : Kind::segmented);
    const auto begin = m_blocks.begin() + std::ptrdiff_t(first);
    m_blocks.erase(begin, m_blocks.begin() + std::ptrdiff_t(last));
    m_blocks.insert(m_blocks.begin() + std::ptrdiff_t(first), std::make_move_iterator(found.begin()),
                    std::make_move_iterator(found.end()));
    merge(first, first + found.size());
}

/// Where the segments end that an edit at `at` leaves alone.
Offset LineSegments::cutBefore(Offset at) const {
    if (at <= 2) {
        return 0;
    }
    // Two units back, since an edit may make a pair of one before it.
    const Offset kept = at - 2;
    const Place place = placeHolding(kept);
    switch (m_blocks[place.block].kind) {
    case Kind::plain:
        return kept;
    case Kind::segmented:
        return segment(place, kept).range.lower;
    case Kind::unseen:
        return std::max(place.start, characterStart(at - std::min(at, segmentUnits)));
    }
    std::unreachable();
}

/// Where, in the units of before, the segments start that an edit up to `at` leaves alone. The line is that
/// of after.
Offset LineSegments::cutBehind(Offset at, Offset change) const {
    const Offset oldSize = m_line.size() - change;
    if (at >= oldSize) {
        return oldSize;
    }
    const Place place = placeHolding(at);
    const Block& block = m_blocks[place.block];
    const Offset blockEnd = place.start + block.units;
    switch (block.kind) {
    case Kind::plain:
        return at + 1;
    case Kind::segmented:
        return segment(place, at).range.upper;
    case Kind::unseen:
        if (blockEnd - at > segmentUnits) {
            const Offset start = characterStart(at + segmentUnits + change) - change;
            return start > at ? start : blockEnd;
        }
        return blockEnd;
    }
    std::unreachable();
}

/// Makes a block start at `at`, which is a cut or lies in a block without segments, and answers its number.
std::size_t LineSegments::split(Offset at) {
    const Place place = placeHolding(at);
    Block& block = m_blocks[place.block];
    const Offset inside = at - place.start;
    if (inside == 0) {
        return place.block;
    }
    if (inside >= block.units) {
        return place.block + 1;
    }
    Block next;
    next.kind = block.kind;
    next.units = block.units - inside;
    if (block.kind == Kind::segmented) {
        Offset start = 0;
        std::size_t part = 0;
        double width = 0;
        for (; start < inside; ++part) {
            start += block.parts[part].units;
            width += static_cast<double>(block.parts[part].width);
        }
        next.parts.assign(block.parts.begin() + std::ptrdiff_t(part), block.parts.end());
        block.parts.resize(part);
        next.width = block.width - width;
        block.width = width;
    } else {
        const double unit = block.kind == Kind::plain ? m_advances->column() : m_average;
        const double width = block.width;
        block.width = rounded(inside * unit);
        next.width = width - block.width;
    }
    block.units = inside;
    m_blocks.insert(m_blocks.begin() + std::ptrdiff_t(place.block) + 1, std::move(next));
    return place.block + 1;
}

/// What an edit put between `from` and `to`, looked at when it is not much.
std::vector<LineSegments::Block> LineSegments::blocks(Offset from, Offset to, Kind around) {
    std::vector<Block> found;
    if (from < to && (around == Kind::unseen || to - from > blockUnits)) {
        found.push_back(withoutParts(from, to));
        return found;
    }
    for (Offset at = from; at < to; at += found.back().units) {
        found.push_back(scan(at, at + 1, to));
    }
    return found;
}

/// Makes one of neighbours from the block before `from` to the block `to` where that can be.
void LineSegments::merge(std::size_t from, std::size_t to) {
    for (std::size_t next = std::min(to, m_blocks.size() - 1) + 1; next-- > (from == 0 ? 0 : from - 1);) {
        mergeWithNext(next);
    }
}

bool LineSegments::mergeWithNext(std::size_t block) {
    if (block + 1 >= m_blocks.size()) {
        return false;
    }
    Block& here = m_blocks[block];
    Block& next = m_blocks[block + 1];
    if (here.kind != next.kind || here.parts.size() + next.parts.size() > mergedParts) {
        return false;
    }
    here.units += next.units;
    here.width += next.width;
    here.parts.insert(here.parts.end(), next.parts.begin(), next.parts.end());
    m_blocks.erase(m_blocks.begin() + std::ptrdiff_t(block) + 1);
    return true;
}
