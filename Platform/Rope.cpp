#include "Rope.h"

#include "RopeNode.h"
#include "UnitScan.h"

#include <algorithm>
#include <limits>

namespace {

/// The chunk that holds the unit at an offset, and the way to it.
struct Leaf {
    const RopeNode* bottom;
    std::size_t index;
    Offset start;
};

Leaf leaf(const RopeNode* root, Offset at) {
    const RopeNode* node = root;
    Offset start = 0;
    for (;;) {
        std::size_t index = 0;
        while (at - start >= node->storage[index].sums.units) {
            start += node->storage[index].sums.units;
            ++index;
        }
        if (node->height == 1) {
            return {node, index, start};
        }
        node = &node->storage[index].node();
    }
}

} // namespace

Rope::Rope(const SourceText& text) : m_root(RopeNode::root(RopeNode::chunks(text), 0)) {}

TextSums Rope::sums() const { return m_root == nullptr ? TextSums() : m_root->sums; }

void Rope::requireInside(SourceRange range) const {
    precondition(range.upper <= size(), "the range lies inside the text");
}

void Rope::requireRoom(SourceRange inPlaceOf, std::size_t units) const {
    requireInside(inPlaceOf);
    precondition(units <= std::numeric_limits<Offset>::max() - (size() - inPlaceOf.length()),
                 "a text has at most 4294967295 units");
}

Rope Rope::replaced(SourceRange range, std::u16string_view units) const {
    requireRoom(range, units.size());
    if (m_root == nullptr) {
        return Rope(RopeNode::root(RopeNode::chunks(units, {}, {}), 0));
    }
    const int height = m_root->height;
    return Rope(RopeNode::root(RopeNode::replaced({m_root->sums, m_root}, height, range, units), height));
}

Rope Rope::replaced(SourceRange range, const Rope& units) const {
    requireRoom(range, units.size());
    return part({0, range.lower}).joined(units).joined(part({range.upper, size()}));
}

Rope Rope::joined(const Rope& next) const {
    requireRoom(SourceRange::empty(size()), next.size());
    if (isEmpty() || next.isEmpty()) {
        return isEmpty() ? next : *this;
    }
    const int height = m_root->height;
    const int nextHeight = next.m_root->height;
    RopeNode::Parts parts =
        RopeNode::joined({m_root->sums, m_root}, height, {next.m_root->sums, next.m_root}, nextHeight);
    return Rope(RopeNode::root(std::move(parts), std::max(height, nextHeight)));
}

Rope Rope::part(SourceRange range) const {
    requireInside(range);
    constexpr std::u16string_view nothing;
    return replaced({range.upper, size()}, nothing).replaced({0, range.lower}, nothing);
}

char16_t Rope::unit(Offset at) const {
    precondition(at < size(), "the offset lies inside the text");
    const Leaf found = leaf(m_root.get(), at);
    return found.bottom->storage[found.index].units()[at - found.start];
}

std::u16string Rope::units(SourceRange range) const {
    std::u16string units;
    units.reserve(range.length());
    for (const std::u16string_view chunk : chunks(range)) {
        units.append(chunk);
    }
    return units;
}

void Rope::copyTo(SourceRange range, char16_t* destination) const {
    for (const std::u16string_view chunk : chunks(range)) {
        destination = std::ranges::copy(chunk, destination).out;
    }
}

Rope::Chunks Rope::chunks(SourceRange range) const {
    requireInside(range);
    return {*this, range};
}

SourceText Rope::contiguous() const {
    if (m_root == nullptr) {
        return {};
    }
    const char16_t* expected = nullptr;
    for (const std::u16string_view chunk : chunks()) {
        if (expected != nullptr && chunk.data() != expected) {
            return {};
        }
        expected = chunk.data() + chunk.size();
    }
    const Leaf first = leaf(m_root.get(), 0);
    const RopeNode::Part& part = first.bottom->storage[first.index];
    return {{part.content, part.units().data()}, size()};
}

Rope Rope::movedTo(const SourceText& units) const {
    precondition(units.count() == size(), "a text is moved to as many units");
    return Rope(m_root == nullptr ? nullptr : RopeNode::moved(*m_root, units, 0));
}

Offset Rope::countBefore(Offset at, Offset TextSums::* what) const {
    if (at == size()) {
        return sums().*what;
    }
    Offset count = 0;
    Offset start = 0;
    for (const RopeNode* node = m_root.get();;) {
        std::size_t index = 0;
        for (; at - start >= node->storage[index].sums.units; ++index) {
            start += node->storage[index].sums.units;
            count += node->storage[index].sums.*what;
        }
        if (node->height == 1) {
            return count + TextSums::of(node->storage[index].units().substr(0, at - start)).*what;
        }
        node = &node->storage[index].node();
    }
}

std::size_t Rope::line(Offset at) const {
    precondition(at <= size(), "the offset lies inside the text");
    return countBefore(at, &TextSums::lineFeeds);
}

Offset Rope::lineStart(std::size_t ofLine) const {
    precondition(ofLine < lineCount(), "the text has that line");
    if (ofLine == 0) {
        return 0;
    }
    std::size_t feedsToSkip = ofLine - 1;
    Offset start = 0;
    const RopeNode* node = m_root.get();
    for (;;) {
        std::size_t index = 0;
        for (; feedsToSkip >= node->storage[index].sums.lineFeeds; ++index) {
            feedsToSkip -= node->storage[index].sums.lineFeeds;
            start += node->storage[index].sums.units;
        }
        if (node->height > 1) {
            node = &node->storage[index].node();
            continue;
        }
        const std::u16string_view units = node->storage[index].units();
        const auto nextFeed = [&](std::size_t from) {
            return UnitScan::findAny(units.data(), static_cast<UnitScan::Position>(from),
                                     static_cast<UnitScan::Position>(units.size()), u'\n');
        };
        auto feed = nextFeed(0);
        for (; feedsToSkip > 0; --feedsToSkip) {
            feed = nextFeed(feed + 1);
        }
        return start + static_cast<Offset>(feed + 1);
    }
}

SourceRange Rope::lineRange(std::size_t line) const {
    const Offset start = lineStart(line);
    return {start, line + 1 < lineCount() ? lineStart(line + 1) - 1 : size()};
}

Offset Rope::unitsOutsidePrintableASCII(SourceRange in) const {
    requireInside(in);
    return countBefore(in.upper, &TextSums::outsidePrintableASCII) -
           countBefore(in.lower, &TextSums::outsidePrintableASCII);
}

bool Rope::operator==(const Rope& other) const {
    if (m_root == other.m_root) {
        return true;
    }
    if (sums() != other.sums()) {
        return false;
    }
    const Chunks mine = chunks();
    const Chunks theirs = other.chunks();
    auto theirChunk = theirs.begin();
    std::u16string_view theirRest;
    for (std::u16string_view rest : mine) {
        while (!rest.empty()) {
            if (theirRest.empty()) {
                theirRest = *theirChunk;
                ++theirChunk;
            }
            const std::size_t common = std::min(rest.size(), theirRest.size());
            if (rest.data() != theirRest.data() && rest.substr(0, common) != theirRest.substr(0, common)) {
                return false;
            }
            rest.remove_prefix(common);
            theirRest.remove_prefix(common);
        }
    }
    return true;
}

Rope::Chunks::Iterator& Rope::Chunks::Iterator::operator++() {
    m_rest.lower += static_cast<Offset>(m_chunk.size());
    if (m_index + 1 < m_bottom->count) {
        ++m_index;
        take(m_bottom->storage[m_index].units(), 0);
    } else {
        descend();
    }
    return *this;
}

void Rope::Chunks::Iterator::descend() {
    if (!m_rest.isEmpty()) {
        const Leaf found = leaf(m_root, m_rest.lower);
        m_bottom = found.bottom;
        m_index = found.index;
        take(m_bottom->storage[m_index].units(), m_rest.lower - found.start);
    }
}

void Rope::Chunks::Iterator::take(std::u16string_view units, Offset skipped) {
    m_chunk = units.substr(skipped, m_rest.length());
}
