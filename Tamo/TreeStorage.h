#pragma once

#include "DocumentTree.h"

#include <cstddef>

/// Fresh memory for the tree of a large text. Touching it for the first time takes longer than the parse that
/// writes there, so that another thread does it ahead of the parser.
class TreeStorage {
public:
    /// Guesses from samples of `text` how many records its tree has, and reserves memory for them.
    explicit TreeStorage(const SourceText& text);

    /// An empty tree with the memory, to be recycled by the parser. Only the first call has it.
    DocumentTree take() { return std::move(m_tree); }

    /// Touches most of what the tree will fill, in the order in which the parser does; may run meanwhile.
    void touch() const;

private:
    struct Stretch {
        void* begin;
        std::size_t size; ///< In bytes.
    };

    DocumentTree m_tree;
    Stretch m_nodes;
    Stretch m_attributes;
};
