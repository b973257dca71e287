#include "NodeCarry.h"

#include "NameHash.h"
#include "UnitScan.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <ranges>
#include <unordered_map>
#include <utility>

namespace {

using Kind = TreeNode::Kind;

constexpr std::size_t fingerprintLength = 96;      ///< Units that tell a node from another.
constexpr std::size_t longestFingerprintRun = 512; ///< Units that are looked at for them.

/// The unit that a node is known by: the first of its name, or of its markup.
Offset anchor(const TreeNode& node) {
    return node.nameRange.isEmpty() ? node.range.lower : node.nameRange.lower;
}

/// The nodes of `tree` that start inside `range`.
std::pair<std::uint32_t, std::uint32_t> startingIn(const DocumentTree& tree, SourceRange range) {
    const auto first = [&](Offset from) {
        const auto* const found =
            std::partition_point(tree.nodes.begin() + 1, tree.nodes.end(),
                                 [from](const TreeNode& node) { return node.range.lower < from; });
        return static_cast<std::uint32_t>(found - tree.nodes.begin());
    };
    return {first(range.lower), first(range.upper)};
}

/// Those of `nodes` that have no counterpart yet.
template <class Replaced>
std::vector<Replaced*> unpaired(std::vector<Replaced>& nodes) {
    std::vector<Replaced*> found;
    for (Replaced& node : nodes) {
        if (!node.isPaired) {
            found.push_back(&node);
        }
    }
    return found;
}

} // namespace

NodeCarry::NodeCarry(const DocumentTree& from, const DocumentTree& to, EditedPieces edits)
    : m_from(from), m_to(to), m_edits(std::move(edits)) {
    m_edits.align(u'<', from.text.units(), to.text.units());
}

// What was not replaced

std::optional<NodeID> NodeCarry::survivor(NodeID node) const {
    const TreeNode& was = m_from[node];
    if (was.kind == Kind::document) {
        return node;
    }
    if (was.kind == Kind::text) {
        const auto holding = [this, node](std::optional<Offset> unit) {
            const NodeID found = unit ? laterNode(*unit, node) : NodeID::document();
            const bool isText = m_to[found].kind == Kind::text && m_to[found].range.contains(*unit);
            return isText ? std::optional(found) : std::nullopt;
        };
        const auto first = holding(m_edits.now(was.range.lower));
        return first ? first : holding(m_edits.now(was.range.upper - 1));
    }
    if (const auto name = was.nameRange.isEmpty() ? std::nullopt : m_edits.now(was.nameRange.lower)) {
        const NodeID found = laterNode(*name, node);
        const TreeNode& is = m_to[found];
        if (is.kind == was.kind && !is.nameRange.isEmpty() && is.nameRange.lower == *name) {
            return found;
        }
    }
    return renamed(node);
}

/// The node of that kind that starts where `node` did, and has another name or none.
std::optional<NodeID> NodeCarry::renamed(NodeID node) const {
    const TreeNode& was = m_from[node];
    const auto start = m_edits.now(was.range.lower);
    const NodeID found = start ? laterNode(*start, node) : NodeID::document();
    if (!start || m_to[found].range.lower != *start || m_to[found].kind != was.kind) {
        return std::nullopt;
    }
    const auto nameThen = was.nameRange.isEmpty() ? std::nullopt : m_edits.then(anchor(m_to[found]));
    const NodeID named = nameThen ? m_from.node(*nameThen) : node;
    const bool isAnothers = named != node && anchor(m_from[named]) == nameThen;
    return isAnothers ? std::nullopt : std::optional(found);
}

/// The last node of the later tree that starts at or before `at`, looked for first as far from `of` as the
/// last one was.
NodeID NodeCarry::laterNode(Offset at, NodeID of) const {
    const auto startsBefore = [&](std::int64_t node) {
        return node < std::int64_t(m_to.nodes.size()) && m_to.nodes[std::size_t(node)].range.lower <= at;
    };
    const std::int64_t guess = std::int64_t(of.raw) + m_distance;
    if (guess >= 0 && startsBefore(guess) && !startsBefore(guess + 1)) {
        return {static_cast<std::uint32_t>(guess)};
    }
    const NodeID found = m_to.node(at);
    m_distance = std::int64_t(found.raw) - std::int64_t(of.raw);
    return found;
}

/// Whether a node of the later tree was put in since.
bool NodeCarry::isNew(NodeID later) const {
    const TreeNode& node = m_to[later];
    if (node.kind == Kind::document) {
        return false;
    }
    const bool isText = node.kind == Kind::text;
    return !m_edits.then(anchor(node)) && (!isText || !m_edits.then(node.range.upper - 1));
}

// What was replaced

bool NodeCarry::isAdded(NodeID later) {
    if (!isNew(later)) {
        return false;
    }
    pairReplaced();
    return m_isTaken.empty() || !m_isTaken[later.raw];
}

std::optional<NodeID> NodeCarry::carried(NodeID node) {
    if (const auto found = survivor(node)) {
        return found;
    }
    pairReplaced();
    const auto pair = std::ranges::lower_bound(m_pairs, node, {}, &std::pair<NodeID, NodeID>::first);
    return pair != m_pairs.end() && pair->first == node ? std::optional(pair->second) : std::nullopt;
}

std::optional<NodePath> NodeCarry::carried(const NodePath& path) {
    const auto node = m_from.resolve(path);
    if (const auto found = node ? carried(*node) : std::nullopt) {
        return m_to.path(*found);
    }
    const auto successor = m_to.resolve(path);
    const bool isFree = successor && (!node || isAdded(*successor));
    return isFree ? std::optional(path) : std::nullopt;
}

std::vector<NodeID> NodeCarry::newNodes() const {
    std::vector<NodeID> nodes;
    for (const EditedPieces::Piece& piece : m_edits.pieces()) {
        const auto [first, end] = startingIn(m_to, piece.now);
        for (NodeID node{first}; node.raw < end; ++node.raw) {
            if (isNew(node)) {
                nodes.push_back(node);
            }
        }
    }
    return nodes;
}

void NodeCarry::pairReplaced() {
    if (std::exchange(m_isPaired, true)) {
        return;
    }
    std::vector<Piece> pieces;
    for (const EditedPieces::Piece& piece : m_edits.pieces()) {
        pieces.push_back(replaced(piece));
        pairEnds(pieces.back());
    }
    pairSame(pieces);
    std::ranges::for_each(pieces, [this](Piece& piece) { pairInOrder(piece); });
    std::ranges::sort(m_pairs);
}

NodeCarry::Piece NodeCarry::replaced(const EditedPieces::Piece& piece) const {
    Piece nodes;
    const auto [firstBefore, endBefore] = startingIn(m_from, piece.then);
    for (NodeID node{firstBefore}; node.raw < endBefore; ++node.raw) {
        if (!survivor(node)) {
            nodes.before.push_back({node, fingerprint(m_from, node)});
        }
    }
    const auto [firstAfter, endAfter] = startingIn(m_to, piece.now);
    for (NodeID node{firstAfter}; node.raw < endAfter; ++node.raw) {
        if (isNew(node)) {
            nodes.after.push_back({node, fingerprint(m_to, node)});
        }
    }
    return nodes;
}

/// Pairs nodes of the same text at the start and at the end of a piece.
void NodeCarry::pairEnds(Piece& piece) {
    auto& [before, after] = piece;
    const std::size_t most = std::min(before.size(), after.size());
    std::size_t first = 0;
    for (; first < most && before[first].fingerprint == after[first].fingerprint; ++first) {
        pair(before[first], after[first]);
    }
    for (std::size_t last = 1; last <= most - first; ++last) {
        Replaced& lastBefore = before[before.size() - last];
        Replaced& lastAfter = after[after.size() - last];
        if (lastBefore.fingerprint != lastAfter.fingerprint) {
            break;
        }
        pair(lastBefore, lastAfter);
    }
}

/// Pairs nodes of the same text in any of the pieces, the first before with the first after and so on.
void NodeCarry::pairSame(std::vector<Piece>& pieces) {
    std::vector<Replaced*> before;
    std::vector<Replaced*> after;
    for (Piece& piece : pieces) {
        std::ranges::copy(unpaired(piece.before), std::back_inserter(before));
        std::ranges::copy(unpaired(piece.after), std::back_inserter(after));
    }
    const auto key = [](const Replaced* node) { return std::pair(node->fingerprint, node->node); };
    std::ranges::sort(before, {}, key);
    std::ranges::sort(after, {}, key);
    auto candidate = after.begin();
    for (Replaced* const node : before) {
        while (candidate != after.end() && (*candidate)->fingerprint < node->fingerprint) {
            ++candidate;
        }
        if (candidate != after.end() && (*candidate)->fingerprint == node->fingerprint) {
            pair(*node, **candidate++);
        }
    }
}

/// Pairs what is left of one piece: all of it in order where it has the same shape, otherwise the nodes of
/// each name.
void NodeCarry::pairInOrder(Piece& piece) {
    const std::vector<Replaced*> before = unpaired(piece.before);
    const std::vector<Replaced*> after = unpaired(piece.after);
    const auto isAlike = [this](const Replaced* one, const Replaced* other) {
        return m_from[one->node].kind == m_to[other->node].kind &&
               m_from[one->node].childCount == m_to[other->node].childCount;
    };
    if (std::ranges::equal(before, after, isAlike)) {
        for (std::size_t at = 0; at < before.size(); ++at) {
            pair(*before[at], *after[at]);
        }
    } else {
        pairNamesakes(before, after);
    }
}

void NodeCarry::pairNamesakes(const std::vector<Replaced*>& before, const std::vector<Replaced*>& after) {
    const auto key = [](const DocumentTree& tree, const Replaced* node) {
        const TreeNode& named = tree[node->node];
        return hashOf(static_cast<int>(named.kind), NameHash()(tree.text.units(named.nameRange)));
    };
    std::unordered_map<std::size_t, std::vector<Replaced*>> waiting;
    for (Replaced* const node : after | std::views::reverse) {
        waiting[key(m_to, node)].push_back(node);
    }
    for (Replaced* const node : before) {
        const auto found = waiting.find(key(m_from, node));
        if (found != waiting.end() && !found->second.empty()) {
            pair(*node, *found->second.back());
            found->second.pop_back();
        }
    }
}

void NodeCarry::pair(Replaced& before, Replaced& after) {
    before.isPaired = after.isPaired = true;
    m_pairs.emplace_back(before.node, after.node);
    m_isTaken.resize(m_to.nodes.size(), false);
    m_isTaken[after.node.raw] = true;
}

std::uint64_t NodeCarry::fingerprint(const DocumentTree& tree, NodeID node) {
    std::array<char16_t, fingerprintLength> units;
    std::size_t length = 0;
    const std::u16string_view source = tree.source(node).substr(0, longestFingerprintRun);
    for (auto unit = source.begin(); unit != source.end() && length < units.size(); ++unit) {
        if (!UnitScan::isWhitespace(*unit)) {
            units[length++] = *unit;
        }
    }
    return hashOf(static_cast<int>(tree[node].kind), NameHash()({units.data(), length}));
}
