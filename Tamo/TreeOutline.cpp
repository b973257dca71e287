#include "TreeOutline.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

using Row = TreeOutline::Row;

constexpr std::size_t mostRowsAtFirst = 200;
constexpr std::uint32_t mostChildrenAtFirst = 10'000;

/// Nodes of one tree, a bit for each.
class NodeSet {
public:
    explicit NodeSet(const DocumentTree& tree) : m_contains(tree.nodes.size(), false) {}

    bool contains(NodeID node) const { return m_contains[node.raw]; }

    /// Adds a node and those around it, but not the document.
    void insertWithAncestors(NodeID node, const DocumentTree& tree) {
        for (; node != NodeID::document() && !m_contains[node.raw]; node = tree[node].parent) {
            m_contains[node.raw] = true;
        }
    }

private:
    std::vector<bool> m_contains;
};

/// The siblings that are still to be visited, from `node` on.
struct Siblings {
    NodeID node;
    std::uint32_t position;
    std::uint32_t depth;
    NodePathSet::Cursor expanded;
};

/// Adds the rows of `at` and the siblings after it, each followed by the rows below it. With `kept`, of those
/// that it contains, all of them expanded.
void append(RecordArray<Row>& rows, const DocumentTree& tree, Siblings at, const NodePathSet& expanded,
            const NodeSet* kept) {
    // Holds what is left of the levels above. A last sibling leaves nothing, so that a chain takes no memory.
    std::vector<Siblings> left;
    for (;;) {
        if (at.node.isNone()) {
            if (left.empty()) {
                return;
            }
            at = left.back();
            left.pop_back();
        }
        const TreeNode& node = tree.nodes[at.node.raw];
        if (kept != nullptr && !kept->contains(at.node)) {
            at.node = node.nextSibling;
            ++at.position;
            continue;
        }
        const NodePathSet::Place place = at.expanded.advance(at.position);
        const bool isExpanded = kept != nullptr || expanded.contains(place);
        rows.append() = {at.node, at.position, at.depth, node.hasChildren(), isExpanded};
        at.node = node.nextSibling;
        ++at.position;
        if (isExpanded && node.hasChildren()) {
            const std::uint32_t depth = at.depth + 1;
            if (!at.node.isNone()) {
                left.push_back(at);
            }
            at = {node.firstChild, 0, depth, expanded.below(place)};
        }
    }
}

/// The first of `rows` from `first` to `end` whose node is at or after `node`.
std::size_t lowerBound(const RecordArray<Row>& rows, std::size_t first, std::size_t end, NodeID node) {
    const auto found = std::partition_point(rows.data() + first, rows.data() + end,
                                            [node](const Row& row) { return row.node < node; });
    return static_cast<std::size_t>(found - rows.data());
}

/// The row of `node`, which has one above `below`. Takes time in the logarithm of the distance.
std::size_t rowAbove(const RecordArray<Row>& rows, std::size_t below, NodeID node) {
    std::size_t step = 1;
    while (step < below && node < rows[below - step].node) {
        step *= 2;
    }
    return lowerBound(rows, below - std::min(step, below), below, node);
}

/// Among the rows from `first` to `end`, those of siblings at `depth` and of what is inside them, the row of
/// the sibling at `position`; `end` when there is none.
std::size_t sibling(const RecordArray<Row>& rows, const DocumentTree& tree, std::size_t first,
                    std::size_t end, std::uint32_t depth, std::uint32_t position) {
    // So it stands where all siblings above it are shown, and nothing inside them.
    if (const std::size_t guess = first + position;
        guess < end && rows[guess].depth == depth && rows[guess].position == position) {
        return guess;
    }
    const auto isBefore = [&](std::size_t row) {
        NodeID node = rows[row].node;
        for (std::uint32_t level = rows[row].depth; level > depth; --level) {
            node = tree[node].parent;
        }
        return rows[lowerBound(rows, first, row, node)].position < position;
    };
    // Doubling keeps what is climbed from a row within its distance from `first`.
    std::size_t step = 1;
    std::size_t lower = first;
    while (first + step < end && isBefore(first + step)) {
        lower = first + step;
        step *= 2;
    }
    std::size_t upper = std::min(first + step, end);
    while (lower < upper) {
        const std::size_t middle = lower + (upper - lower) / 2;
        if (isBefore(middle)) {
            lower = middle + 1;
        } else {
            upper = middle;
        }
    }
    return lower < end && rows[lower].depth == depth && rows[lower].position == position ? lower : end;
}

} // namespace

TreeOutline::Rows TreeOutline::rows(const DocumentTree& tree, Rows reusing) const {
    reusing.m_rows.clear();
    append(reusing.m_rows, tree,
           {tree[NodeID::document()].firstChild, 0, 0, expanded.below(NodePathSet::root())}, expanded,
           nullptr);
    return reusing;
}

TreeOutline::Rows TreeOutline::rows(const DocumentTree& tree) const { return rows(tree, Rows()); }

TreeOutline::Rows TreeOutline::rows(const DocumentTree& tree, std::span<const NodeID> matches, Rows reusing) {
    NodeSet kept(tree);
    for (const NodeID match : matches) {
        kept.insertWithAncestors(match, tree);
    }
    const NodePathSet none;
    reusing.m_rows.clear();
    append(reusing.m_rows, tree, {tree[NodeID::document()].firstChild, 0, 0, none.below(NodePathSet::root())},
           none, &kept);
    return reusing;
}

TreeOutline::Rows TreeOutline::rows(const DocumentTree& tree, std::span<const NodeID> matches) {
    return rows(tree, matches, Rows());
}

void TreeOutline::expand(std::size_t row, Rows& in, const DocumentTree& tree) {
    const Row expanding = in[row];
    if (expanding.isExpanded) {
        return;
    }
    const NodePath path = in.path(row, tree);
    expanded.insert(path);
    in.m_rows[row].isExpanded = true;
    if (expanding.hasChildren) {
        RecordArray<Row> below;
        append(
            below, tree,
            {tree[expanding.node].firstChild, 0, expanding.depth + 1, expanded.below(expanded.place(path))},
            expanded, nullptr);
        in.replace(row + 1, 0, below);
    }
}

void TreeOutline::collapse(std::size_t row, Rows& in, const DocumentTree& tree) {
    if (in[row].isExpanded) {
        expanded.erase(in.path(row, tree));
        const std::size_t end = in.subtreeEnd(row, tree);
        in.m_rows[row].isExpanded = false;
        in.replace(row + 1, end - row - 1, {});
    }
}

NodePathSet TreeOutline::defaultExpansion(const DocumentTree& tree) {
    struct Shown {
        NodeID node;
        NodePath path;
    };
    NodePathSet expanded;
    const auto root = tree.rootElement();
    if (!root || tree[*root].childCount > mostChildrenAtFirst) {
        return expanded;
    }
    std::size_t rows = tree[NodeID::document()].childCount + tree[*root].childCount;
    std::vector<Shown> level{{*root, tree.path(*root)}};
    expanded.insert(level.front().path);
    while (!level.empty() && rows < mostRowsAtFirst) {
        std::vector<Shown> next;
        for (const Shown& shown : level) {
            std::uint32_t position = 0;
            for (const NodeID child : tree.children(shown.node)) {
                if (tree[child].hasChildren()) {
                    next.push_back({child, shown.path});
                    next.back().path.indices.push_back(position);
                    rows += tree[child].childCount;
                }
                ++position;
            }
        }
        if (rows < mostRowsAtFirst) {
            for (const Shown& shown : next) {
                expanded.insert(shown.path);
            }
        }
        level = std::move(next);
    }
    return expanded;
}

NodePath TreeOutline::Rows::path(std::size_t of, const DocumentTree& in) const {
    NodePath path;
    path.indices.resize((*this)[of].depth + 1);
    std::size_t row = of;
    for (std::size_t level = path.indices.size(); level-- > 0;) {
        path.indices[level] = m_rows[row].position;
        if (level > 0) {
            row = rowAbove(m_rows, row, in[m_rows[row].node].parent);
        }
    }
    return path;
}

std::optional<std::size_t> TreeOutline::Rows::row(NodeID of) const {
    const std::size_t row = lowerBound(m_rows, 0, size(), of);
    return row < size() && m_rows[row].node == of ? std::optional(row) : std::nullopt;
}

std::optional<std::size_t> TreeOutline::Rows::row(const NodePath& of, const DocumentTree& in) const {
    std::optional<std::size_t> row;
    std::size_t first = 0;
    std::size_t end = size();
    for (std::uint32_t depth = 0; depth < of.indices.size(); ++depth) {
        const std::size_t found = sibling(m_rows, in, first, end, depth, of.indices[depth]);
        if (found == end) {
            return std::nullopt;
        }
        if (const NodeID next = in[m_rows[found].node].nextSibling; !next.isNone()) {
            end = lowerBound(m_rows, found + 1, end, next);
        }
        row = found;
        first = found + 1;
    }
    return row;
}

std::optional<std::size_t> TreeOutline::Rows::parent(std::size_t of, const DocumentTree& in) const {
    if ((*this)[of].depth == 0) {
        return std::nullopt;
    }
    return rowAbove(m_rows, of, in[m_rows[of].node].parent);
}

std::size_t TreeOutline::Rows::subtreeEnd(std::size_t row, const DocumentTree& in) const {
    NodeID node = (*this)[row].node;
    while (!node.isNone() && in[node].nextSibling.isNone()) {
        node = in[node].parent;
    }
    return node.isNone() ? size() : lowerBound(m_rows, row + 1, size(), in[node].nextSibling);
}

/// Puts `rows` in the place of `count` rows from `first` on.
void TreeOutline::Rows::replace(std::size_t first, std::size_t count, const RecordArray<Row>& rows) {
    const std::size_t oldSize = size();
    m_rows.reserve(oldSize - count + rows.size());
    for (std::size_t added = count; added < rows.size(); ++added) {
        m_rows.append();
    }
    Row* const tail = m_rows.begin() + first + count;
    Row* const newTail = m_rows.begin() + first + rows.size();
    const std::size_t tailLength = oldSize - first - count;
    if (newTail < tail) {
        std::copy_n(tail, tailLength, newTail);
    } else {
        std::copy_backward(tail, tail + tailLength, newTail + tailLength);
    }
    std::ranges::copy(rows, m_rows.begin() + first);
    for (std::size_t removed = rows.size(); removed < count; ++removed) {
        m_rows.removeLast();
    }
}
