#pragma once

#include "TreeOutline.h"

#include <QPalette>
#include <QRect>
#include <QString>

class QPainter;

/// One row of the outline: what it says and how it looks. Made for one painting or question, nothing is kept.
/// `row` and `tree` outlive it.
///
/// From left to right: indentation, the disclosure button of a row with children, the symbol of the kind of
/// node, the label, in a filtered outline also the attribute that matched; at the right end the number of
/// children while they are hidden, and a mark for problems. Texts of the document are plain, and bounded
/// before they are laid out.
struct TreeRowView {
    const TreeOutline::Row& row;
    const DocumentTree& tree;
    bool hasError = false; ///< A problem lies on this node.
    QString filter = {};   ///< What the rows are filtered by; marked where it stands in the label.

    /// How the row is shown besides what it says.
    struct Appearance {
        QRect rect;          ///< All of the row, from edge to edge.
        int indentation = 0; ///< Pixels.
        bool isAlternate = false;
        bool isSelected = false;
        bool hasFocus = false; ///< Keys go to this row.
        bool isDisclosureHovered = false;
    };

    static constexpr int height = 28;

    /// The name of the symbol for a kind of node.
    static QString icon(TreeNode::Kind kind);

    /// What the disclosure button does: "Contraer" when expanded, "Expandir" when collapsed.
    static QString disclosureTitle(bool isExpanded);

    /// What the error mark tells when it is pointed at.
    static QString errorHelp();

    /// The label as one plain text.
    QString text() const;

    /// Whether the number of children stands on the row.
    bool showsCount() const { return row.hasChildren && !row.isExpanded; }

    void paint(QPainter& painter, const Appearance& appearance, const QPalette& palette) const;

    // Where the parts are

    static QRect disclosureRect(const Appearance& appearance);
    static QRect iconRect(const Appearance& appearance);
    /// The label and all free space behind it.
    QRect labelRect(const Appearance& appearance) const;
    static QRect errorRect(const Appearance& appearance);
};
