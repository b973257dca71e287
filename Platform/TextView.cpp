#include "TextView.h"

#include "CompletionPopup.h"
#include "EditingKeys.h"
#include "StringUnits.h"
#include "TextContextMenu.h"
#include "TextInputMethod.h"
#include "TextMimeData.h"
#include "TextNavigation.h"
#include "TextViewAccessible.h"
#include "TextViewKeys.h"
#include "TextViewMouse.h"
#include "TextViewPainter.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDrag>
#include <QFontDatabase>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QScrollBar>
#include <QStyle>
#include <QToolTip>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

TextSelection clamped(TextSelection selection, Offset size) {
    return {std::min(selection.anchor, size), std::min(selection.caret, size)};
}

} // namespace

TextView::TextView(QWidget* parent)
    : QAbstractScrollArea(parent), m_vertical(*verticalScrollBar()), m_horizontal(*horizontalScrollBar()),
      m_mouse(std::make_unique<TextViewMouse>(*this)) {
    TextViewAccessible::install();
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled);
    setInputMethodHints(Qt::ImhMultiLine | Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText);
    setAcceptDrops(true);
    setFrameShape(QFrame::NoFrame);
    viewport()->setCursor(Qt::IBeamCursor);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setMouseTracking(true);
    connect(&m_blinker, &CaretBlinker::toggled, this, &TextView::updateCaret);
    updateFont();
}

TextView::~TextView() { setHistory(nullptr); }

// Following the text

void TextView::setHistory(TextHistory* history) {
    if (m_history != nullptr) {
        m_history->storage().disconnect(this);
        m_history->setSelectionKeeper({});
    }
    m_history = history;
    m_isInBatch = false;
    m_layout.setText(history != nullptr ? history->text() : Rope());
    if (history != nullptr) {
        const TextStorage* storage = &history->storage();
        connect(storage, &TextStorage::editProcessed, this, &TextView::followEdit);
        connect(storage, &TextStorage::editingEnded, this, &TextView::finishBatch);
        connect(storage, &TextStorage::textMoved, this,
                [this, storage] { m_layout.moveTo(storage->text()); });
        history->setSelectionKeeper({[this] { return m_selection; },
                                     [this](TextSelection selection) { restoreSelection(selection); }});
    }
    updateExtents();
    scrollTo(0, 0);
    setSelection({});
    visibleTextMoved();
}

void TextView::followEdit(SourceRange edited, std::int64_t changeInLength) {
    const std::size_t firstVisible = firstVisibleLine();
    const bool isAbove = firstVisible > 0 && std::int64_t(edited.upper) - changeInLength <
                                                 std::int64_t(text().lineStart(firstVisible));
    const auto linesBefore = static_cast<qint64>(text().lineCount());
    const std::size_t first = text().line(edited.lower);
    const SourceRange replaced = {edited.lower, edited.upper - changeInLength};
    const Rope before = text();

    notePlace(replaced);
    m_layout.edit(m_history->text(), edited, changeInLength);
    m_isInBatch = true;
    m_selection = m_selection.carriedAlong(replaced, edited.length());
    m_mouse->followEdit(replaced, edited.length());
    TextViewAccessible::announceEdit(*this, before, replaced, edited.length(), text());

    const qint64 moreLines = static_cast<qint64>(text().lineCount()) - linesBefore;
    if (isAbove && moreLines != 0) {
        // What the user looks at stays where it is.
        updateExtents();
        m_vertical.set(m_vertical.value() + moreLines * lineHeight());
        viewport()->update();
    } else {
        updateLines(first, moreLines != 0 ? text().lineCount() : text().line(edited.upper) + 1);
    }
}

void TextView::finishBatch() {
    m_isInBatch = false;
    if (const auto after = std::exchange(m_selectionAfterEdit, std::nullopt)) {
        m_selection = *after;
    }
    m_selection = clamped(m_selection, text().size());
    updateExtents();
    restorePlace();
    const bool showsCaret = std::exchange(m_showsCaretAfterEdit, false);
    if (m_delegate != nullptr) {
        m_delegate->textDidChange();
    }
    if (showsCaret) {
        showCaret();
    }
    announceSelection();
    visibleTextMoved();
    if (m_completions != nullptr && m_completions->isVisible()) {
        offerCompletions();
    }
}

/// Keeps in mind where a caret in view is seen if `replaced`, of the text before, holds it and the first line
/// in view: line numbers tell nothing of the place then.
void TextView::notePlace(SourceRange replaced) {
    const qint64 top = qint64(text().line(caret())) * lineHeight() - m_vertical.value();
    const Offset firstVisible = text().lineStart(firstVisibleLine());
    const bool isAroundCaret = replaced.lower <= caret() && caret() <= replaced.upper;
    const bool isAroundView = replaced.lower <= firstVisible && firstVisible < replaced.upper;
    const bool isCaretSeen = top > -lineHeight() && top < viewport()->height();
    if (!m_isInBatch && isAroundCaret && isAroundView && isCaretSeen) {
        m_caretTopBeforeEdit = top;
    }
}

/// Has the line of the caret seen where it was seen before the edit, as far as the text reaches.
void TextView::restorePlace() {
    if (const auto top = std::exchange(m_caretTopBeforeEdit, std::nullopt)) {
        m_vertical.set(qint64(text().line(caret())) * lineHeight() - *top);
    }
}

void TextView::restoreSelection(TextSelection selection) {
    m_selectionAfterEdit = clamped(selection, text().size());
    m_showsCaretAfterEdit = true;
    if (!m_isInBatch) {
        finishBatch();
    }
}

// The selection

void TextView::select(SourceRange range) { select(TextSelection::of(range)); }

void TextView::select(TextSelection selection) { setSelection(clamped(selection, text().size())); }

void TextView::setSelection(TextSelection selection) {
    m_selection = selection;
    if (m_isInBatch) {
        return;
    }
    if (m_completions != nullptr) {
        m_completions->hide();
    }
    announceSelection();
}

void TextView::announceSelection() {
    if (hasFocus()) {
        m_blinker.start();
    }
    const TextSelection before = std::exchange(m_announcedSelection, m_selection);
    if (before == m_selection) {
        return;
    }
    m_wantedX = -1;
    if (m_history != nullptr) {
        m_history->selectionMoved(m_selection);
    }
    const TextSelection known = clamped(before, text().size());
    for (const SourceRange range : {known.range(), m_selection.range()}) {
        updateLines(text().line(range.lower), text().line(range.upper) + 1);
    }
    QGuiApplication::inputMethod()->update(Qt::ImQueryInput);
    TextViewAccessible::announceCaret(*this);
    if (m_delegate != nullptr) {
        m_delegate->selectionDidChange();
    }
    emit selectionChanged();
}

void TextView::selectAll() {
    select(text().fullRange());
    ownPrimarySelection();
}

void TextView::moveTo(Offset caret, Anchor anchor) {
    setSelection({anchor == Anchor::stays ? m_selection.anchor : caret, caret});
    showCaret();
    if (anchor == Anchor::stays) {
        ownPrimarySelection();
    }
}

void TextView::moveByLines(std::int64_t lines, Anchor anchor) {
    const auto last = static_cast<std::int64_t>(text().lineCount()) - 1;
    const std::int64_t wanted = static_cast<std::int64_t>(text().line(caret())) + lines;
    const double wantedX = m_wantedX < 0 ? m_layout.x(caret()) : m_wantedX;
    if (wanted < 0 || wanted > last) {
        moveTo(wanted < 0 ? 0 : text().size(), anchor);
    } else {
        moveTo(m_layout.offset(static_cast<std::size_t>(wanted), wantedX), anchor);
    }
    m_wantedX = wantedX;
}

// Editing

bool TextView::mayChange(SourceRange range, std::u16string_view units) const {
    const bool fits = units.size() <= std::numeric_limits<Offset>::max() - (text().size() - range.length());
    return m_history != nullptr && fits && !(range.isEmpty() && units.empty()) &&
           (m_delegate == nullptr || m_delegate->shouldChangeText(range, units));
}

void TextView::insertText(std::u16string_view units) { type(selection(), units); }

void TextView::type(SourceRange range, std::u16string_view units) {
    if (mayChange(range, units)) {
        m_selectionAfterEdit = TextSelection::at(range.lower + static_cast<Offset>(units.size()));
        m_showsCaretAfterEdit = true;
        m_history->type(range, units);
    }
}

void TextView::replace(SourceRange range, std::u16string_view units, const QString& actionName) {
    if (mayChange(range, units)) {
        const TextEdit edit{range, std::u16string(units)};
        apply({&edit, 1}, TextSelection::at(range.lower + static_cast<Offset>(units.size())), actionName);
    }
}

void TextView::apply(std::span<const TextEdit> edits, TextSelection after, const QString& actionName) {
    m_selectionAfterEdit = after;
    m_showsCaretAfterEdit = true;
    m_history->apply(edits, actionName);
}

void TextView::erase(Offset to) {
    type(selection().isEmpty() ? TextSelection{caret(), to}.range() : selection(), {});
}

void TextView::undo() {
    if (m_history != nullptr && m_history->undoManager() != nullptr) {
        m_history->undoManager()->undo();
    }
}

void TextView::redo() {
    if (m_history != nullptr && m_history->undoManager() != nullptr) {
        m_history->undoManager()->redo();
    }
}

void TextView::cut() {
    if (!selection().isEmpty()) {
        copy();
        replace(selection(), {}, QStringLiteral("Cortar"));
    }
}

void TextView::copy() const {
    if (!selection().isEmpty()) {
        QApplication::clipboard()->setMimeData(new TextMimeData(text().part(selection())));
    }
}

void TextView::paste() {
    if (const QMimeData* copied = QApplication::clipboard()->mimeData()) {
        replace(selection(), TextMimeData::units(*copied, text()), QStringLiteral("Pegar"));
    }
}

void TextView::eraseSelection() { type(selection(), {}); }

// Completion

void TextView::complete() {
    if (m_completions == nullptr) {
        m_completions = new CompletionPopup(this);
        connect(m_completions, &CompletionPopup::chosen, this, &TextView::acceptCompletion);
    }
    offerCompletions();
}

void TextView::offerCompletions() {
    const QStringList words = m_delegate != nullptr && selection().isEmpty()
                                  ? m_delegate->completions(TextNavigation::partialWord(caret(), text()))
                                  : QStringList();
    const QRect place = caretRect().toAlignedRect();
    m_completions->offer(words, {viewport()->mapToGlobal(place.topLeft()), place.size()});
}

void TextView::acceptCompletion(const QString& word) {
    replace(TextNavigation::partialWord(caret(), text()), unitsOf(word), QStringLiteral("Completar"));
}

// Keys

bool TextView::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride &&
        EditingKeys::isEditingKey(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QAbstractScrollArea::event(event);
}

void TextView::keyPressEvent(QKeyEvent* event) {
    const bool isTaken = m_completions != nullptr && m_completions->handleKey(*event);
    if (!isTaken && !TextViewKeys(*this).press(*event)) {
        QAbstractScrollArea::keyPressEvent(event);
    }
}

// Input methods

bool TextView::hasMarkedText() const { return m_hasMarkedText; }

void TextView::inputMethodEvent(QInputMethodEvent* event) {
    const SourceRange replaced = TextInputMethod::replacedRange(*event, caret(), text());
    const bool isComposing = !event->preeditString().isEmpty();
    // What ends the composing belongs to it still.
    m_hasMarkedText = m_hasMarkedText || isComposing;
    m_layout.setPreedit(caret(), {});
    if (!replaced.isEmpty()) {
        type(replaced, unitsOf(event->commitString()));
    } else if (isComposing || !event->commitString().isEmpty()) {
        insertText(unitsOf(event->commitString()));
    }
    m_hasMarkedText = isComposing;
    if (const auto wanted = TextInputMethod::wantedSelection(*event, caret(), text())) {
        select(*wanted);
    }
    m_layout.setPreedit(caret(), TextInputMethod::preedit(*event));
    updateLines(text().line(caret()), text().line(caret()) + 1);
    if (hasFocus()) {
        m_blinker.start();
    }
    QGuiApplication::inputMethod()->update(Qt::ImQueryInput);
    event->accept();
}

QVariant TextView::inputMethodQuery(Qt::InputMethodQuery query) const {
    switch (query) {
    case Qt::ImEnabled:
        return m_history != nullptr;
    case Qt::ImHints:
        return static_cast<int>(inputMethodHints());
    case Qt::ImCursorRectangle:
        return caretRect().translated(viewport()->pos());
    case Qt::ImAnchorRectangle:
        return caretRect(m_selection.anchor).translated(viewport()->pos());
    case Qt::ImFont:
        return font();
    default:
        const QVariant answer = TextInputMethod::answer(query, m_selection, text());
        return answer.isValid() ? answer : QAbstractScrollArea::inputMethodQuery(query);
    }
}

void TextView::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    m_blinker.start();
}

void TextView::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    m_blinker.stop();
    if (m_completions != nullptr) {
        m_completions->hide();
    }
}

// The mouse

void TextView::mousePressEvent(QMouseEvent* event) { m_mouse->press(*event); }

void TextView::mouseDoubleClickEvent(QMouseEvent* event) { m_mouse->pressTwice(*event); }

void TextView::mouseMoveEvent(QMouseEvent* event) { m_mouse->move(*event); }

void TextView::mouseReleaseEvent(QMouseEvent* event) { m_mouse->release(*event); }

void TextView::dragEnterEvent(QDragEnterEvent* event) { m_mouse->carryOver(*event); }

void TextView::dragMoveEvent(QDragMoveEvent* event) { m_mouse->carryOver(*event); }

void TextView::dragLeaveEvent(QDragLeaveEvent*) { m_mouse->leave(); }

void TextView::dropEvent(QDropEvent* event) { m_mouse->drop(*event); }

Qt::DropAction TextView::carry(QMimeData* text) {
    auto* drag = new QDrag(this);
    drag->setMimeData(text);
    return drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::MoveAction);
}

bool TextView::isOnSelection(QPointF position) const {
    const std::size_t under = line(position.y());
    const QPointF place = position - origin(under);
    const auto holds = [&](const QRectF& box) { return box.contains(place); };
    return !selection().isEmpty() && std::ranges::any_of(m_layout.boxes(selection(), under), holds);
}

void TextView::ownPrimarySelection() const {
    if (QApplication::clipboard()->supportsSelection() && !selection().isEmpty() && !m_mouse->isSelecting()) {
        QApplication::clipboard()->setMimeData(new TextMimeData(text().part(selection())),
                                               QClipboard::Selection);
    }
}

void TextView::contextMenuEvent(QContextMenuEvent* event) {
    const bool isByMouse = event->reason() == QContextMenuEvent::Mouse;
    if (isByMouse && !isOnSelection(event->pos())) {
        setSelection(TextSelection::at(offset(event->pos())));
    }
    auto* menu = new TextContextMenu(*this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (m_delegate != nullptr) {
        m_delegate->contextMenuWillOpen(*menu, isByMouse ? offset(event->pos()) : caret());
    }
    const QPoint below = viewport()->mapToGlobal(caretRect().bottomLeft().toPoint());
    menu->popup(isByMouse ? event->globalPos() : below);
    event->accept();
}

bool TextView::viewportEvent(QEvent* event) {
    return event->type() == QEvent::ToolTip ? showToolTip(*static_cast<QHelpEvent*>(event))
                                            : QAbstractScrollArea::viewportEvent(event);
}

bool TextView::showToolTip(const QHelpEvent& event) {
    const std::size_t under = line(event.pos().y());
    const Offset end = TextNavigation::lineEnd(under, text());
    const bool isOnText = lineRect(under).contains(event.pos()) && event.pos().x() < caretRect(end).left();
    const QString told =
        m_delegate != nullptr && isOnText ? m_delegate->toolTip(offset(event.pos())) : QString();
    // A text that looked like marked-up text would be shown as such.
    const QString plain = QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(told.toHtmlEscaped());
    QToolTip::showText(event.globalPos(), told.isEmpty() ? told : plain, viewport());
    return true;
}

// Scrolling

void TextView::wheelEvent(QWheelEvent* event) {
    const int lines = QApplication::wheelScrollLines();
    const QPoint moved =
        m_wheel.pixels(*event, {3 * lines * m_layout.columnWidth(), double(lines) * lineHeight()});
    scrollTo(m_horizontal.value() + moved.x(), m_vertical.value() + moved.y());
    event->accept();
}

// Geometry

int TextView::lineHeight() const { return m_layout.lineHeight(); }

double TextView::baseline() const { return m_layout.baseline(); }

QPointF TextView::origin(std::size_t line) const {
    const qint64 y = qint64(line) * lineHeight() + inset.y() - m_vertical.value();
    return {-left(), static_cast<double>(y)};
}

std::size_t TextView::line(double atY) const {
    const auto last = static_cast<qint64>(text().lineCount()) - 1;
    const qint64 y = m_vertical.value() + static_cast<qint64>(std::floor(atY)) - inset.y();
    return static_cast<std::size_t>(std::clamp<qint64>(y / lineHeight(), 0, last));
}

std::size_t TextView::firstVisibleLine() const { return line(0); }

std::size_t TextView::lastVisibleLine() const { return line(std::max(0, viewport()->height() - 1)); }

QRectF TextView::lineRect(std::size_t line) const {
    return {0, origin(line).y(), static_cast<double>(viewport()->width()), static_cast<double>(lineHeight())};
}

QRectF TextView::caretRect() const { return caretRect(caret()); }

QRectF TextView::caretRect(Offset at) const {
    const QPointF start = origin(text().line(at));
    // A caret between two pixels of the screen would be blurred.
    const double scale = devicePixelRatioF();
    const double x = std::round((start.x() + m_layout.x(at)) * scale) / scale;
    return {x, start.y(), static_cast<double>(m_caretWidth), static_cast<double>(lineHeight())};
}

Offset TextView::offset(QPointF at) const { return m_layout.offset(line(at.y()), at.x() + left()); }

std::vector<SourceRange> TextView::visibleStretches(Offset longestWhole) {
    std::vector<SourceRange> stretches;
    bool mayJoin = false;
    for (std::size_t line = firstVisibleLine(); line <= lastVisibleLine(); ++line) {
        const SourceRange whole = text().lineRange(line);
        const bool isLong = whole.length() > longestWhole;
        const SourceRange shown =
            isLong ? m_layout.stretch(line, left(), right())
                   : SourceRange::unchecked(whole.lower, std::min(whole.upper + 1, text().size()));
        if (mayJoin && !isLong) {
            stretches.back().upper = shown.upper;
        } else {
            stretches.push_back(shown);
        }
        mayJoin = !isLong;
    }
    return stretches;
}

void TextView::updateFont() {
    m_layout.setFont(font());
    m_caretWidth = std::max(2, style()->pixelMetric(QStyle::PM_TextCursorWidth, nullptr, this));
    updateExtents();
    visibleTextMoved();
}

void TextView::updateExtents() {
    const qint64 width = std::llround(m_layout.width()) + 2 * inset.x() + m_caretWidth;
    m_horizontal.setExtent(width, viewport()->width(), static_cast<int>(4 * m_layout.columnWidth()));
    m_vertical.setExtent(m_layout.height() + 2 * inset.y(), viewport()->height(), lineHeight());
}

void TextView::scrollTo(qint64 left, qint64 top) {
    const bool moved = m_horizontal.set(left);
    if (m_vertical.set(top) || moved) {
        visibleTextMoved();
    }
}

void TextView::scrollContentsBy(int, int) {
    m_horizontal.follow(horizontalScrollBar()->value());
    m_vertical.follow(verticalScrollBar()->value());
    visibleTextMoved();
}

void TextView::scrollToVisible(SourceRange range) {
    const SourceRange inside =
        SourceRange::unchecked(std::min(range.lower, text().size()), std::min(range.upper, text().size()));
    const qint64 top = qint64(text().line(inside.lower)) * lineHeight();
    const qint64 bottom = (qint64(text().line(inside.upper)) + 1) * lineHeight() + 2 * inset.y();
    const int height = viewport()->height();
    const qint64 now = m_vertical.value();
    const bool isNear = bottom + height > now && top < now + 2 * height;
    if (!isNear) {
        scrollTo(m_horizontal.value(), (top + std::min(bottom, top + height)) / 2 - height / 2);
    } else if (top < now || bottom - top > height) {
        const bool isStartVisible = top >= now && top + lineHeight() <= now + height;
        scrollTo(m_horizontal.value(), isStartVisible ? now : top);
    } else if (bottom > now + height) {
        scrollTo(m_horizontal.value(), bottom - height);
    }
    showHorizontally(inside);
}

void TextView::showHorizontally(SourceRange range) {
    const bool isOneLine = text().line(range.lower) == text().line(range.upper);
    const double room = viewport()->width() - 2 * inset.x() - m_caretWidth;
    // In a long line the scroll decides what is laid out, and so the exact places.
    for (int attempt = 0; attempt < 4; ++attempt) {
        const double start = m_layout.x(range.lower);
        const double end = isOneLine ? m_layout.x(range.upper) : start;
        const auto now = static_cast<double>(m_horizontal.value());
        const double last = end - start <= room ? end : start;
        if (start >= now && last <= now + room) {
            return;
        }
        updateExtents();
        const double wanted = start < now ? start - room / 4 : std::min(start, last - room * 3 / 4);
        scrollTo(last <= room ? 0 : std::llround(wanted), m_vertical.value());
    }
}

void TextView::updateLines(std::size_t first, std::size_t last) {
    const double top = std::max(0.0, origin(first).y());
    const double bottom = std::min<double>(viewport()->height(), origin(last).y());
    if (top < bottom) {
        viewport()->update(QRectF(0, top, viewport()->width(), bottom - top).toAlignedRect());
    }
}

void TextView::updateCaret() { viewport()->update(caretRect().toAlignedRect()); }

void TextView::visibleTextMoved() {
    viewport()->update();
    if (m_ruler != nullptr) {
        m_ruler->update();
    }
    m_idle.start(0, this);
    emit visibleTextChanged();
}

void TextView::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m_idle.timerId()) {
        layOutMore();
    } else {
        QAbstractScrollArea::timerEvent(event);
    }
}

void TextView::layOutMore() {
    const double widthBefore = m_layout.width();
    const double caretBefore = m_layout.x(caret());
    if (!m_layout.buildMore()) {
        m_idle.stop();
    }
    const double moved = m_layout.x(caret()) - caretBefore;
    if (moved == 0 && m_layout.width() == widthBefore) {
        return;
    }
    // A caret in view stays where it is seen, whatever becomes known of the text to its left.
    const bool isCaretSeen = caretBefore >= left() && caretBefore <= right();
    updateExtents();
    m_horizontal.set(m_horizontal.value() + (isCaretSeen ? std::llround(moved) : 0));
    viewport()->update();
}

void TextView::setRuler(QWidget* ruler) {
    delete m_ruler;
    m_ruler = ruler;
    if (ruler != nullptr) {
        ruler->setParent(this);
        ruler->show();
    }
    retile();
}

void TextView::retile() {
    const int width = m_ruler != nullptr ? m_ruler->sizeHint().width() : 0;
    setViewportMargins(width, 0, 0, 0);
    if (m_ruler != nullptr) {
        const QRect port = viewport()->geometry();
        m_ruler->setGeometry(port.left() - width, port.top(), width, port.height());
        m_ruler->update();
    }
}

void TextView::resizeEvent(QResizeEvent* event) {
    const QRectF caret = caretRect();
    const bool wasCaretInView = caret.top() >= 0 && caret.bottom() <= event->oldSize().height();
    retile();
    updateExtents();
    if (wasCaretInView && caret.bottom() > viewport()->height()) {
        // A bar that opens leaves less room: the line that is written in stays.
        scrollTo(m_horizontal.value(), m_vertical.value() + qCeil(caret.bottom() - viewport()->height()));
    }
    visibleTextMoved();
}

void TextView::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        updateFont();
    } else if (event->type() == QEvent::PaletteChange) {
        viewport()->update();
    }
}

// Looks

void TextView::setTemporaryAttributes(SourceRange range, const TemporaryAttributes& attributes) {
    m_layout.setTemporaryAttributes(range, attributes);
    updateLines(text().line(range.lower), text().line(range.upper) + 1);
}

void TextView::removeTemporaryAttributes(SourceRange range) {
    m_layout.removeTemporaryAttributes(range);
    updateLines(text().line(range.lower), text().line(range.upper) + 1);
}

void TextView::setTemporaryAttributes(SourceRange range, std::span<const AttributeRuns::Run> runs) {
    m_layout.removeTemporaryAttributes(range);
    for (const AttributeRuns::Run& run : runs) {
        m_layout.setTemporaryAttributes(run.range, run.attributes);
    }
    updateLines(text().line(range.lower), text().line(range.upper) + 1);
}

void TextView::setUnderlines(Underlines underlines) {
    m_underlines = std::move(underlines);
    viewport()->update();
}

void TextView::setHighlights(Highlights highlights) {
    m_highlights = std::move(highlights);
    viewport()->update();
}

void TextView::paintEvent(QPaintEvent* event) {
    const double widthBefore = m_layout.width();
    TextViewPainter(*this).paint(event->rect());
    if (m_layout.width() > widthBefore) {
        QMetaObject::invokeMethod(this, &TextView::updateExtents, Qt::QueuedConnection);
    }
}
