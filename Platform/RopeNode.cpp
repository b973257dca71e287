#include "RopeNode.h"

#include <algorithm>
#include <iterator>

namespace {

using Part = RopeNode::Part;
using Parts = RopeNode::Parts;

std::size_t pieces(std::size_t total, std::size_t maximum) { return (total + maximum - 1) / maximum; }

/// Nodes of the given height over `children`, as few and as equally filled as possible.
Parts packed(Parts children, int height) {
    Parts nodes;
    const std::size_t nodeCount = pieces(children.size(), RopeNode::maximumParts);
    nodes.reserve(nodeCount);
    for (std::size_t i = 0; i < nodeCount; ++i) {
        const auto begin = children.begin() + children.size() * i / nodeCount;
        const auto end = children.begin() + children.size() * (i + 1) / nodeCount;
        const auto node = std::make_shared<RopeNode>();
        node->height = static_cast<std::uint8_t>(height);
        node->count = static_cast<std::uint8_t>(end - begin);
        std::move(begin, end, node->storage.begin());
        for (const Part& part : node->parts()) {
            node->sums += part.sums;
        }
        nodes.push_back({node->sums, node});
    }
    return nodes;
}

/// A copy of `node` with another child, the commonest outcome of an edit by far.
Part withChild(const RopeNode& node, std::size_t index, Part child) {
    const auto copy = std::make_shared<RopeNode>(node);
    copy->storage[index] = std::move(child);
    copy->sums = {};
    for (const Part& part : copy->parts()) {
        copy->sums += part.sums;
    }
    return {copy->sums, copy};
}

bool isUnderfull(const Part& part, int height) {
    return height == 0 ? part.sums.units < RopeNode::minimumChunk
                       : part.node().count < RopeNode::minimumParts;
}

Parts merged(const Part& first, const Part& second, int height);

/// Fills up the underfull parts among those of `changed`, positions in `parts`, from their neighbours.
void balance(Parts& parts, int height, std::size_t changedBegin, std::size_t changedEnd) {
    for (std::size_t i = changedBegin; i < changedEnd && parts.size() > 1;) {
        if (!isUnderfull(parts[i], height)) {
            ++i;
            continue;
        }
        // Two neighbours become either one part or two that are at least half full: either is progress.
        i = i == 0 ? 0 : i - 1;
        Parts both = merged(parts[i], parts[i + 1], height);
        const std::size_t removed = 2 - both.size();
        const auto at = parts.begin() + static_cast<std::ptrdiff_t>(i);
        std::ranges::move(both, at);
        parts.erase(at + static_cast<std::ptrdiff_t>(both.size()), at + 2);
        changedEnd = std::max(changedEnd - removed, i + both.size());
    }
}

Parts merged(const Part& first, const Part& second, int height) {
    if (height == 0) {
        return RopeNode::chunks(first.units(), second.units(), {});
    }
    Parts children;
    children.reserve(2 * RopeNode::maximumParts);
    std::ranges::copy(first.node().parts(), std::back_inserter(children));
    std::ranges::copy(second.node().parts(), std::back_inserter(children));
    const std::size_t seam = first.node().count;
    balance(children, height - 1, seam - 1, seam + 1);
    return packed(std::move(children), height);
}

/// The first part that ends at or after an offset, and where it starts.
struct Position {
    std::size_t index = 0;
    Offset start = 0;
};

Position find(std::span<const Part> parts, Offset offset) {
    Position position;
    while (position.start + parts[position.index].sums.units < offset) {
        position.start += parts[position.index].sums.units;
        ++position.index;
    }
    return position;
}

} // namespace

Parts RopeNode::chunks(const SourceText& text) {
    Parts parts;
    const std::size_t count = text.count();
    const std::size_t chunkCount = pieces(count, maximumChunk);
    parts.reserve(chunkCount);
    for (std::size_t i = 0; i < chunkCount; ++i) {
        const std::size_t begin = count * i / chunkCount;
        const std::size_t end = count * (i + 1) / chunkCount;
        const std::u16string_view units = text.units().substr(begin, end - begin);
        parts.push_back({TextSums::of(units), {text.storage(), units.data()}});
    }
    return parts;
}

Parts RopeNode::chunks(std::u16string_view first, std::u16string_view second, std::u16string_view third) {
    Parts parts;
    const std::size_t count = first.size() + second.size() + third.size();
    const std::size_t chunkCount = pieces(count, maximumChunk);
    parts.reserve(chunkCount);
    std::size_t taken = 0;
    for (std::size_t i = 0; i < chunkCount; ++i) {
        const std::size_t size = count * (i + 1) / chunkCount - taken;
        const auto storage = std::make_shared_for_overwrite<char16_t[]>(size);
        char16_t* to = storage.get();
        for (std::u16string_view* const from : {&first, &second, &third}) {
            const std::size_t copied = from->copy(to, storage.get() + size - to);
            from->remove_prefix(copied);
            to += copied;
        }
        parts.push_back({TextSums::of({storage.get(), size}), {storage, storage.get()}});
        taken += size;
    }
    return parts;
}

Parts RopeNode::replaced(const Part& part, int height, SourceRange range, std::u16string_view units) {
    if (height == 0) {
        return chunks(part.units().substr(0, range.lower), units, part.units().substr(range.upper));
    }
    const std::span<const Part> old = part.node().parts();
    const Position first = find(old, range.lower);
    const Position last = find(old, range.upper);

    const bool isInOneChild = first.index == last.index;
    const Offset firstEnd = isInOneChild ? range.upper - first.start : old[first.index].sums.units;
    Parts changed = replaced(old[first.index], height - 1, {range.lower - first.start, firstEnd}, units);
    if (isInOneChild && changed.size() == 1 && (old.size() == 1 || !isUnderfull(changed[0], height - 1))) {
        return {withChild(part.node(), first.index, std::move(changed[0]))};
    }
    if (!isInOneChild) {
        Parts end = replaced(old[last.index], height - 1, {0, range.upper - last.start}, {});
        std::ranges::move(end, std::back_inserter(changed));
    }

    Parts children;
    children.reserve(maximumParts + 2);
    std::ranges::copy(old.first(first.index), std::back_inserter(children));
    std::ranges::move(changed, std::back_inserter(children));
    const std::size_t changedEnd = children.size();
    std::ranges::copy(old.subspan(last.index + 1), std::back_inserter(children));
    balance(children, height - 1, first.index, changedEnd);
    return packed(std::move(children), height);
}

Parts RopeNode::joined(const Part& first, int firstHeight, const Part& second, int secondHeight) {
    const int height = std::max(firstHeight, secondHeight);
    if (firstHeight == secondHeight) {
        Parts both = {first, second};
        balance(both, height, 0, both.size());
        return both;
    }
    Parts children;
    children.reserve(maximumParts + 2);
    std::size_t changedBegin = 0;
    std::size_t changedEnd = 0;
    if (firstHeight > secondHeight) {
        const std::span<const Part> kept = first.node().parts().first(first.node().count - 1);
        const Part& last = first.node().parts().back();
        std::ranges::copy(kept, std::back_inserter(children));
        std::ranges::move(joined(last, height - 1, second, secondHeight), std::back_inserter(children));
        changedBegin = kept.size();
        changedEnd = children.size();
    } else {
        const std::span<const Part> kept = second.node().parts().subspan(1);
        const Part& next = second.node().parts().front();
        std::ranges::move(joined(first, firstHeight, next, height - 1), std::back_inserter(children));
        changedEnd = children.size();
        std::ranges::copy(kept, std::back_inserter(children));
    }
    balance(children, height - 1, changedBegin, changedEnd);
    return packed(std::move(children), height);
}

// Recurses on the height, which is logarithmic.
std::shared_ptr<const RopeNode> RopeNode::moved(const RopeNode& node, const SourceText& to, Offset at) {
    auto copy = std::make_shared<RopeNode>();
    copy->sums = node.sums;
    copy->height = node.height;
    copy->count = node.count;
    for (std::size_t index = 0; index < node.count; ++index) {
        const Part& part = node.storage[index];
        Part& own = copy->storage[index];
        own.sums = part.sums;
        if (node.height == 1) {
            own.content = {to.storage(), to.units().data() + at};
        } else {
            own.content = moved(part.node(), to, at);
        }
        at += part.sums.units;
    }
    return copy;
}

std::shared_ptr<const RopeNode> RopeNode::root(Parts parts, int height) {
    while (parts.size() > 1 || (height == 0 && !parts.empty())) {
        parts = packed(std::move(parts), ++height);
    }
    if (parts.empty()) {
        return nullptr;
    }
    while (height > 1 && parts.front().node().count == 1) {
        parts = {parts.front().node().storage.front()};
        --height;
    }
    return std::static_pointer_cast<const RopeNode>(parts.front().content);
}
