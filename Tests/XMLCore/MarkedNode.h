#pragma once

#include "TreeParser.h"

#include <string>

/// A document, and the node that starts at the `|` in `marked`.
struct MarkedNode {
    DocumentTree tree;
    NodeID node;

    explicit MarkedNode(std::u16string marked) {
        const std::size_t at = marked.find(u'|');
        marked.erase(at, 1);
        tree = TreeParser::parse(SourceText(marked));
        node = tree.node(static_cast<Offset>(at));
    }
};
