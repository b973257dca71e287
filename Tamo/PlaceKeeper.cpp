#include "PlaceKeeper.h"

#include "CodeEditorView.h"
#include "TreeEditorView.h"
#include "UnitScan.h"

#include <QScrollBar>

#include <algorithm>

namespace {

using Mode = EditorSession::Mode;

constexpr Offset longestIndentation = 1024;

/// The first unit from `start` on that is no white space; `start` where none is near.
Offset firstInk(const Rope& text, Offset start) {
    const Offset end = start + std::min(text.size() - start, longestIndentation);
    const std::u16string units = text.units({start, end});
    const auto ink =
        std::ranges::find_if_not(units, [](char16_t unit) { return UnitScan::isWhitespace(unit); });
    return ink == units.end() ? start : start + static_cast<Offset>(ink - units.begin());
}

} // namespace

PlaceKeeper::PlaceKeeper(EditorSession& session, CodeEditorView& source, TreeEditorView& tree,
                         QObject* parent)
    : QObject(parent), m_session(session), m_source(source), m_tree(tree) {}

void PlaceKeeper::prepare(Mode mode) {
    if (mode == Mode::visual && m_source.isVisible()) {
        m_revealedInSight = m_session.revealRequest();
    }
    // Posted events come in order: the panes are laid out before.
    if (mode != Mode::visual && m_source.isHidden() && m_tree.isVisible()) {
        if (const auto place = placeInTree()) {
            QMetaObject::invokeMethod(
                this, [this, place] { showInText(*place); }, Qt::QueuedConnection);
        }
    } else if (mode != Mode::text && m_tree.isHidden() && m_source.isVisible()) {
        QMetaObject::invokeMethod(
            this, [this, place = placeInText()] { showInTree(place); }, Qt::QueuedConnection);
    }
}

std::optional<PlaceKeeper::NodePlace> PlaceKeeper::placeInTree() const {
    const TreeOutlineView& outline = m_tree.outline();
    const auto isInView = [&](std::size_t row) {
        return outline.viewport()->rect().intersects(outline.rect(row));
    };
    const auto selected = outline.selectedRow();
    const bool isSelected = selected && isInView(*selected);
    std::optional<std::size_t> row = isSelected ? selected : outline.row(QPoint(0, TreeRowView::height));
    if (!row && outline.rowCount() != 0) {
        row = 0;
    }
    if (!row) {
        return std::nullopt;
    }
    const NodeID node = m_session.rows()[*row].node;
    return NodePlace{m_session.tree()[node].range, isSelected};
}

Offset PlaceKeeper::placeInText() const {
    const TextView& view = m_source.textView();
    const QRectF caret = view.caretRect();
    if (QRectF(view.viewport()->rect()).intersects(caret)) {
        return view.caret();
    }
    const std::size_t first = view.firstVisibleLine();
    const bool isCut = view.lineRect(first).top() < 0 && first < view.lastVisibleLine();
    return firstInk(view.text(), view.text().lineStart(isCut ? first + 1 : first));
}

void PlaceKeeper::showInText(NodePlace place) {
    const auto now = m_session.editsSinceParse().now(place.range);
    if (!now || !m_source.isVisible()) {
        return;
    }
    if (m_session.revealRequest() != m_revealedInSight) {
        // What was revealed out of sight was scrolled to in a view that had no width yet.
        m_source.textView().horizontalScrollBar()->setValue(0);
    }
    if (place.isSelected) {
        putCaretInto(*now);
        m_source.textView().scrollToVisible(SourceRange::empty(m_source.textView().caret()));
    } else {
        m_source.textView().scrollToVisible(SourceRange::empty(now->lower));
    }
}

/// A caret that is in the node stays where it was. What is typed next replaces nothing.
void PlaceKeeper::putCaretInto(SourceRange range) {
    const SourceRange selected = m_source.textView().selection();
    if (!(range.lower <= selected.lower && selected.upper <= range.upper)) {
        m_source.textView().select(SourceRange::empty(range.lower));
    }
}

void PlaceKeeper::showInTree(Offset place) {
    if (const auto path = m_tree.isVisible() ? m_session.showNode(place) : std::nullopt) {
        m_tree.bringIntoView(*path);
    }
}
