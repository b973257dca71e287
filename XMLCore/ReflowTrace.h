#pragma once

#include "DocumentTree.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

/// Follows a printer while it writes a formatted text: finds where places of the old text are in the new one,
/// and whether white space changes that may be part of the text. The printer must report every range of the
/// old text that it copies, in text order. All calls together take time linear in the tree and in the white
/// space.
class ReflowTrace {
public:
    /// `places` are offsets of the tree's text, in any order.
    ReflowTrace(const DocumentTree& tree, std::span<const Offset> places);

    /// Reports that the units of `range` will be appended to `output`. The old text between the previous
    /// range and this one is in the content of the node `in`.
    void keep(SourceRange range, NodeID in, std::u16string_view output);

    /// Reports that the units of `output` after the last range have no counterpart in the old text.
    void skipAdded(std::u16string_view output) { m_newEnd = output.size(); }

    /// Reports that `output` is complete.
    void finish(std::u16string_view output);

    /// The places as offsets of the new text, in the order in which they were given. Call it after `finish`.
    std::vector<Offset> places() const;

    /// Whether white space changed in an element that contains text beside other nodes, or where `xml:space`
    /// is `preserve`.
    bool changesTextSpace() const { return m_changesTextSpace; }

private:
    struct Place {
        Offset before;
        std::size_t index;
        std::size_t after = 0;
    };

    bool hasLineBreak(SourceRange space) const;
    void noteSpace(SourceRange before, std::u16string_view after, NodeID in);

    const DocumentTree& m_tree;
    std::vector<Place> m_places; ///< In ascending order of `before`.
    std::size_t m_next = 0;      ///< The index of the first place that is not found yet.
    Offset m_oldEnd = 0;         ///< The end of the last range, in the old text.
    /// The end of the last range, or of what was added after it, in the new text.
    std::size_t m_newEnd = 0;
    /// For each node, whether white space in its content may be part of the text; empty until needed.
    std::vector<bool> m_mayBeText;
    bool m_changesTextSpace = false;
};
