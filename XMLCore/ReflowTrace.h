#pragma once

#include "DocumentTree.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

/// Follows a layout while it is written: where places of the old text come to stand, and whether white space
/// changes that may be part of the text. Told of every range of the old text that is copied, in text order.
/// All of it together takes time linear in the tree and in the white space.
class ReflowTrace {
public:
    /// `places` are offsets of the tree's text, in any order.
    ReflowTrace(const DocumentTree& tree, std::span<const Offset> places);

    /// The units of `range` will be appended to `output`. What stood before them in the old text, back to the
    /// range before, lies in the content of the node `in`.
    void keep(SourceRange range, NodeID in, std::u16string_view output);

    /// The end of `output` after the last range has no counterpart in the old text.
    void skipAdded(std::u16string_view output) { m_newEnd = output.size(); }

    /// Nothing follows any more.
    void finish(std::u16string_view output);

    /// The places in the new text, in the order in which they were given. Called after `finish`.
    std::vector<Offset> places() const;

    /// Whether white space changed in an element that holds text beside other nodes, or where `xml:space` is
    /// `preserve`.
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
    std::size_t m_next = 0;      ///< The first place that is not found yet.
    Offset m_oldEnd = 0;         ///< Of the last range, in the old text.
    std::size_t m_newEnd = 0;    ///< Of the last range, in the new text.
    std::vector<bool>
        m_mayBeText; ///< Whether white space in a node may be text; empty until it is asked for.
    bool m_changesTextSpace = false;
};
