#pragma once

#include "DocumentTree.h"
#include "NodePath.h"
#include "TreeOutline.h"

#include <QString>

#include <memory>
#include <optional>
#include <stop_token>

/// What the outline shows of one tree, made off the main thread.
struct OutlineContents {
    /// What it depends on besides the tree.
    struct Request {
        std::shared_ptr<const TreeOutline> outline; ///< None while nothing was expanded yet.
        QString filter;                             ///< Empty for none; without white space around it.
        std::optional<NodePath> selection;
        std::optional<Offset> selectOffset; ///< Of the node to select in its place.
    };
    /// A node and where it stands.
    struct Place {
        NodePath path;
        NodeID node;
    };

    Request request; ///< With the outline to begin with in the place of none.
    TreeOutline::Rows rows;
    bool isSelectionThere = false; ///< The tree has a node at the requested selection.
    std::optional<Place> toSelect; ///< The innermost node around the requested offset.

    /// Incomplete once `stop` was requested. `reusing` gives its memory to the rows.
    static OutlineContents make(Request request, const DocumentTree& of, std::stop_token stop,
                                TreeOutline::Rows reusing);
};
