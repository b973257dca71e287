#include "TextViewMouse.h"

#include "TextMimeData.h"
#include "TextMove.h"
#include "TextView.h"

#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QMouseEvent>
#include <QStyleHints>
#include <QTimerEvent>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

constexpr int scrollInterval = 40; ///< Milliseconds between steps while the mouse is held outside.

bool hasFiles(const QMimeData& data) {
    const QList<QUrl> urls = data.urls();
    return std::ranges::any_of(urls, &QUrl::isLocalFile);
}

} // namespace

// Selecting

void TextViewMouse::press(QMouseEvent& event) {
    if (event.button() == Qt::LeftButton) {
        press(event, m_clicks.single(event.position()));
    }
}

void TextViewMouse::pressTwice(QMouseEvent& event) {
    if (event.button() == Qt::LeftButton) {
        press(event, m_clicks.twice(event.position()));
    }
}

void TextViewMouse::press(QMouseEvent& event, int clicks) {
    QGuiApplication::inputMethod()->commit();
    m_position = event.position();
    const bool extends = event.modifiers().testFlag(Qt::ShiftModifier) && clicks == 1;
    m_isPressedOnSelection = clicks == 1 && !extends && m_view.isOnSelection(m_position);
    if (m_isPressedOnSelection) {
        return; // To be carried away, or else to go with the release.
    }
    const auto granularity = DragSelection::granularity(clicks);
    const Offset at = m_view.offset(m_position);
    m_drag = extends ? DragSelection::extending(m_view.directedSelection(), granularity, m_view.text())
                     : DragSelection(at, granularity, m_view.text());
    m_view.select(m_drag->selection(at, m_view.text()));
    if (clicks == 1) {
        m_view.showCaret();
    }
}

void TextViewMouse::pressLine(QPointF position, Extent extent) {
    QGuiApplication::inputMethod()->commit();
    m_position = position;
    m_isPressedOnSelection = false;
    const Offset at = m_view.offset(position);
    constexpr auto line = DragSelection::Granularity::line;
    m_drag = extent == Extent::extended
                 ? DragSelection::extending(m_view.directedSelection(), line, m_view.text())
                 : DragSelection(at, line, m_view.text());
    m_view.select(m_drag->selection(at, m_view.text()));
}

void TextViewMouse::dragTo(QPointF position) {
    if (m_drag) {
        selectTo(position);
        scrollAlong(position);
    }
}

void TextViewMouse::endDrag() {
    m_drag.reset();
    m_scrolling.stop();
    m_view.ownPrimarySelection();
}

void TextViewMouse::move(QMouseEvent& event) {
    const QPointF position = event.position();
    if (m_isPressedOnSelection) {
        const double distance = (position - m_position).manhattanLength();
        if (distance >= QGuiApplication::styleHints()->startDragDistance()) {
            m_isPressedOnSelection = false;
            carrySelectionAway();
        }
    } else if (m_drag) {
        dragTo(position);
    } else {
        m_view.viewport()->setCursor(m_view.isOnSelection(position) ? Qt::ArrowCursor : Qt::IBeamCursor);
    }
}

void TextViewMouse::selectTo(QPointF position) {
    m_position = position;
    m_view.select(m_drag->selection(m_view.offset(position), m_view.text()));
    m_view.showCaret();
}

void TextViewMouse::scrollAlong(QPointF position) {
    if (m_view.viewport()->rect().contains(position.toPoint())) {
        m_scrolling.stop();
    } else if (!m_scrolling.isActive()) {
        m_scrolling.start(scrollInterval, this);
    }
}

void TextViewMouse::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m_scrolling.timerId() && m_drag) {
        selectTo(m_position);
    }
}

void TextViewMouse::release(QMouseEvent& event) {
    if (event.button() == Qt::MiddleButton) {
        pastePrimarySelection(event.position());
    } else if (event.button() == Qt::LeftButton) {
        if (std::exchange(m_isPressedOnSelection, false)) {
            m_view.select(TextSelection::at(m_view.offset(event.position())));
        }
        endDrag();
    }
}

void TextViewMouse::pastePrimarySelection(QPointF position) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    const QMimeData* selected =
        clipboard->supportsSelection() ? clipboard->mimeData(QClipboard::Selection) : nullptr;
    if (selected != nullptr) {
        m_view.replace(SourceRange::empty(m_view.offset(position)),
                       TextMimeData::units(*selected, m_view.text()), QStringLiteral("Pegar"));
    }
}

// Carrying text

void TextViewMouse::followEdit(SourceRange replaced, Offset length) {
    if (m_carried) {
        m_carried = TextSelection::of(*m_carried).carriedAlong(replaced, length).range();
    }
    // What was pressed may be elsewhere now.
    m_drag.reset();
    m_isPressedOnSelection = false;
}

void TextViewMouse::carrySelectionAway() {
    m_carried = m_view.selection();
    const Qt::DropAction action = m_view.carry(new TextMimeData(m_view.text().part(*m_carried)));
    setDropPlace(std::nullopt);
    // Taken by another view or program; a drop in this view has moved it already.
    const auto taken = std::exchange(m_carried, std::nullopt);
    if (action == Qt::MoveAction && taken) {
        const TextEdit edit = TextEdit::deleteRange(*taken);
        m_view.apply({&edit, 1}, TextSelection::at(taken->lower), QStringLiteral("Mover texto"));
    }
}

void TextViewMouse::carryOver(QDragMoveEvent& event) {
    if (m_view.history() == nullptr) {
        event.ignore();
    } else if (hasFiles(*event.mimeData())) {
        event.setDropAction(Qt::CopyAction);
        event.accept();
    } else if (TextMimeData::hasUnits(*event.mimeData())) {
        event.acceptProposedAction();
        setDropPlace(m_view.offset(event.position()));
        // Towards the edges the view moves on, to where nothing could be dropped otherwise.
        m_view.scrollToVisible(SourceRange::empty(*m_dropPlace));
    } else {
        event.ignore();
    }
}

void TextViewMouse::drop(QDropEvent& event) {
    setDropPlace(std::nullopt);
    if (hasFiles(*event.mimeData())) {
        event.setDropAction(Qt::CopyAction);
        event.accept();
        emit m_view.filesDropped(event.mimeData()->urls());
        return;
    }
    event.acceptProposedAction();
    const Offset at = m_view.offset(event.position());
    if (m_carried && event.dropAction() == Qt::MoveAction) {
        moveCarriedText(TextMimeData::units(*event.mimeData()), at);
    } else {
        insertDropped(TextMimeData::units(*event.mimeData(), m_view.text()), at);
    }
    m_view.setFocus(Qt::MouseFocusReason);
}

void TextViewMouse::insertDropped(std::u16string units, Offset at) {
    const auto length = static_cast<Offset>(units.size());
    const bool fits = units.size() <= std::numeric_limits<Offset>::max() - m_view.text().size();
    if (m_view.history() != nullptr && fits && !units.empty()) {
        const TextEdit edit = TextEdit::insert(std::move(units), at);
        m_view.apply({&edit, 1}, {at, at + length}, QStringLiteral("Soltar"));
    }
}

void TextViewMouse::moveCarriedText(std::u16string_view units, Offset to) {
    const SourceRange from = *std::exchange(m_carried, std::nullopt);
    const TextMove move(from, units, to);
    if (m_view.history() != nullptr && !move.edits.empty()) {
        m_view.apply(move.edits, TextSelection::of(move.moved), QStringLiteral("Mover texto"));
    }
}

std::optional<Offset> TextViewMouse::dropPlace() const {
    return m_dropPlace.transform([this](Offset at) { return std::min(at, m_view.text().size()); });
}

void TextViewMouse::setDropPlace(std::optional<Offset> place) {
    if (std::exchange(m_dropPlace, place) != place) {
        m_view.viewport()->update();
    }
}
