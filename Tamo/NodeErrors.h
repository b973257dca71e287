#pragma once

#include "DocumentTree.h"

#include <cstdint>
#include <vector>

/// The nodes of one tree that a problem concerns: the innermost node around each diagnostic's start, and all
/// its ancestors.
class NodeErrors {
public:
    /// No node.
    NodeErrors() = default;
    /// Takes time linear in the diagnostics and in the nodes around and between them.
    explicit NodeErrors(const DocumentTree& tree);

    bool isEmpty() const { return m_words.empty(); }

    /// Whether `node` or a node inside it has a problem. Any id may be asked for.
    bool contains(NodeID node) const {
        const std::size_t word = node.raw / bitsPerWord;
        return word < m_words.size() && ((m_words[word] >> (node.raw % bitsPerWord)) & 1) != 0;
    }

    bool operator==(const NodeErrors&) const = default;

private:
    static constexpr std::size_t bitsPerWord = 64;

    void insertWithAncestors(NodeID node, const DocumentTree& tree);

    std::vector<std::uint64_t> m_words; ///< One bit a node; none without any.
};
