#pragma once

#include "DocumentTree.h"
#include "EditedPieces.h"
#include "ExpansionCarry.h"
#include "NodePath.h"
#include "ParsedDocument.h"
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

        /// The document that all paths are of, none when it is the one that the contents are made for; the
        /// edits since; and what was expanded in an earlier one.
        std::shared_ptr<const ParsedDocument> before = {};
        EditedPieces edits = {};
        std::shared_ptr<const ExpansionCarry::Absent> absent = {};
    };
    /// A node and where it stands.
    struct Place {
        NodePath path;
        NodeID node;
    };

    /// With the outline carried to this tree, or the one to begin with in the place of none, and without the
    /// document before. The selection is as it was asked for.
    Request request;
    TreeOutline::Rows rows;
    std::size_t matchCount = 0;        ///< Nodes that match the filter.
    std::optional<NodePath> selection; ///< The requested one in this tree, if its node is there.
    std::optional<Place> toSelect; ///< The innermost node around the requested offset.

    /// Incomplete once `stop` was requested. `reusing` gives its memory to the rows.
    static OutlineContents make(Request request, const DocumentTree& of, std::stop_token stop,
                                TreeOutline::Rows reusing);
};
