#include "TextView.h"

#include "EditingKeys.h"
#include "TextMimeData.h"
#include "TextNavigation.h"

#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleHints>
#include <QTextLayout>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr Offset longLine = 2048;   ///< Units from which on only a stretch of a line is laid out.
constexpr Offset stretchStep = 256; ///< Stretches start at multiples of it, so that scrolling reuses them.
constexpr int padding = 6;          ///< Pixels around the text and the numbers.
constexpr int tabColumns = 4;
constexpr int caretWidth = 2;
constexpr int dragScrollInterval = 40;

std::u16string_view unitsOf(const QString& string) {
    return {reinterpret_cast<const char16_t*>(string.utf16()), static_cast<std::size_t>(string.size())};
}

} // namespace

TextView::TextView(QWidget* parent)
    : QAbstractScrollArea(parent), m_vertical(*verticalScrollBar()), m_horizontal(*horizontalScrollBar()) {
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled);
    setFrameShape(QFrame::NoFrame);
    viewport()->setCursor(Qt::IBeamCursor);
    updateFont();
}

TextView::~TextView() = default;

void TextView::setText(const Rope& text) {
    m_text = text;
    m_widest = 0;
    updateExtents();
    scrollTo(0, 0);
    setSelection(0, 0);
}

void TextView::changeText(const Rope& text, Offset caret) {
    m_text = text;
    updateExtents();
    moveTo(caret, Anchor::moves);
}

void TextView::setUnderlines(Underlines underlines) {
    m_underlines = std::move(underlines);
    viewport()->update();
}

SourceRange TextView::selection() const {
    return SourceRange::unchecked(std::min(m_anchor, m_caret), std::max(m_anchor, m_caret));
}

void TextView::select(SourceRange range) {
    setSelection(std::min(range.lower, m_text.size()), std::min(range.upper, m_text.size()));
    showCaret();
}

void TextView::reveal(SourceRange range) {
    const Offset end = std::min(range.upper, m_text.size());
    const Offset start = std::min(range.lower, end);
    setSelection(end, start);
    const qint64 top = qint64(m_text.line(start)) * m_lineHeight;
    const int height = viewport()->height();
    if (top < m_vertical.value() || top + m_lineHeight > m_vertical.value() + height) {
        scrollTo(m_horizontal.value(), top - height / 2);
    }
    showCaretHorizontally();
}

// Editing

void TextView::cut() {
    if (!selection().isEmpty()) {
        copy();
        replaceSelection({});
    }
}

void TextView::copy() const {
    if (!selection().isEmpty()) {
        QApplication::clipboard()->setMimeData(TextMimeData::make(m_text.units(selection())).release());
    }
}

void TextView::paste() {
    if (const QMimeData* copied = QApplication::clipboard()->mimeData()) {
        replaceSelection(TextMimeData::units(*copied));
    }
}

void TextView::replaceSelection(std::u16string_view units) {
    const SourceRange range = selection();
    const bool fits = units.size() <= std::numeric_limits<Offset>::max() - (m_text.size() - range.length());
    if (fits && !(range.isEmpty() && units.empty())) {
        emit editRequested({range, std::u16string(units)});
    }
}

void TextView::erase(Offset to) {
    if (selection().isEmpty()) {
        const auto [lower, upper] = std::minmax(m_caret, to);
        setSelection(lower, upper);
    }
    replaceSelection({});
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
    if (!handleMove(*event) && !handleEdit(*event)) {
        QAbstractScrollArea::keyPressEvent(event);
    }
}

bool TextView::handleMove(const QKeyEvent& event) {
    const auto anchor = [](bool selects) { return selects ? Anchor::stays : Anchor::moves; };
    if (const auto motion = EditingKeys::motion(event)) {
        moveTo(motion->target(m_caret, m_text), anchor(motion->selects));
    } else if (const auto lineMotion = EditingKeys::lineMotion(event)) {
        const int page = std::max(1, viewport()->height() / m_lineHeight - 1);
        moveByLines(lineMotion->lines + lineMotion->pages * page, anchor(lineMotion->selects));
    } else {
        return false;
    }
    return true;
}

bool TextView::handleEdit(const QKeyEvent& event) {
    if (const auto target = EditingKeys::erasure(event)) {
        erase(target(m_caret, m_text));
    } else if (event.matches(QKeySequence::Cut)) {
        cut();
    } else if (event.matches(QKeySequence::Copy)) {
        copy();
    } else if (event.matches(QKeySequence::Paste)) {
        paste();
    } else if (event.matches(QKeySequence::SelectAll)) {
        selectAll();
    } else if (event.matches(QKeySequence::InsertParagraphSeparator)) {
        replaceSelection(TextNavigation::lineEnding(m_text));
    } else if (event.key() == Qt::Key_Tab && event.modifiers() == Qt::NoModifier) {
        replaceSelection(unitsOf(m_indentation));
    } else if (EditingKeys::isTyping(event)) {
        replaceSelection(unitsOf(event.text()));
    } else {
        return false;
    }
    return true;
}

void TextView::inputMethodEvent(QInputMethodEvent* event) {
    m_preedit = event->preeditString();
    if (event->replacementLength() > 0) {
        const std::int64_t start = std::int64_t(m_caret) + event->replacementStart();
        const auto inside = [this](std::int64_t at) {
            return static_cast<Offset>(std::clamp<std::int64_t>(at, 0, m_text.size()));
        };
        setSelection(inside(start), inside(start + event->replacementLength()));
    }
    if (!event->commitString().isEmpty() || event->replacementLength() > 0) {
        replaceSelection(unitsOf(event->commitString()));
    }
    viewport()->update();
}

QVariant TextView::inputMethodQuery(Qt::InputMethodQuery query) const {
    switch (query) {
    case Qt::ImEnabled:
        return true;
    case Qt::ImCursorRectangle:
        return const_cast<TextView*>(this)->caretRect().translated(viewport()->pos());
    case Qt::ImFont:
        return font();
    default:
        return QAbstractScrollArea::inputMethodQuery(query);
    }
}

// The caret and the selection

void TextView::setSelection(Offset anchor, Offset caret) {
    m_wantedX = -1;
    m_anchor = anchor;
    m_caret = caret;
    restartBlinking();
    viewport()->update();
    QGuiApplication::inputMethod()->update(Qt::ImCursorRectangle);
    emit selectionChanged();
}

void TextView::moveTo(Offset caret, Anchor anchor) {
    setSelection(anchor == Anchor::stays ? m_anchor : caret, caret);
    showCaret();
}

void TextView::moveByLines(std::int64_t lines, Anchor anchor) {
    const std::size_t line = m_text.line(m_caret);
    const auto last = static_cast<std::int64_t>(m_text.lineCount()) - 1;
    const std::int64_t wanted = static_cast<std::int64_t>(line) + lines;
    const double wantedX = m_wantedX < 0 ? x(m_caret, line) : m_wantedX;
    const auto target = static_cast<std::size_t>(std::clamp<std::int64_t>(wanted, 0, last));
    if (wanted < 0 || wanted > last) {
        moveTo(wanted < 0 ? 0 : m_text.size(), anchor);
    } else {
        moveTo(offset(target, wantedX), anchor);
    }
    m_wantedX = wantedX;
}

void TextView::showCaret() {
    const qint64 top = qint64(m_text.line(m_caret)) * m_lineHeight;
    const qint64 lowest = top + m_lineHeight + 2 * padding - viewport()->height();
    scrollTo(m_horizontal.value(), std::clamp(m_vertical.value(), std::min(lowest, top), top));
    showCaretHorizontally();
}

void TextView::showCaretHorizontally() {
    const std::size_t line = m_text.line(m_caret);
    const double room = viewport()->width() - marginWidth() - 2 * padding - caretWidth;
    // In a long line the scroll decides what is laid out, and so the exact place of the caret.
    for (int attempt = 0; attempt < 4; ++attempt) {
        const double at = x(m_caret, line);
        const auto left = static_cast<double>(m_horizontal.value());
        if (at >= left && at <= left + room) {
            return;
        }
        updateExtents();
        const double wanted = at < left ? at - room / 4 : at - room * 3 / 4;
        scrollTo(at < room ? 0 : std::llround(wanted), m_vertical.value());
    }
}

void TextView::restartBlinking() {
    m_caretIsOn = true;
    const int period = QGuiApplication::styleHints()->cursorFlashTime();
    if (hasFocus() && period > 0) {
        m_blinking.start(period / 2, this);
    }
}

void TextView::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    restartBlinking();
    viewport()->update();
}

void TextView::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    m_blinking.stop();
    viewport()->update();
}

void TextView::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m_blinking.timerId()) {
        m_caretIsOn = !m_caretIsOn;
        viewport()->update(caretRect());
    } else if (event->timerId() == m_dragScrolling.timerId()) {
        dragTo(m_dragPosition);
    }
}

// The mouse

void TextView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        return;
    }
    const Offset at = offset(event->position());
    const bool isThirdClick =
        m_sinceDoubleClick.isValid() &&
        m_sinceDoubleClick.elapsed() < QGuiApplication::styleHints()->mouseDoubleClickInterval();
    m_sinceDoubleClick.invalidate();
    if (isThirdClick) {
        const std::size_t line = m_text.line(at);
        const bool isLast = line + 1 == m_text.lineCount();
        setSelection(m_text.lineStart(line), isLast ? m_text.size() : m_text.lineStart(line + 1));
        return;
    }
    m_isDragging = true;
    m_dragPosition = event->position();
    moveTo(at, event->modifiers() & Qt::ShiftModifier ? Anchor::stays : Anchor::moves);
}

void TextView::mouseMoveEvent(QMouseEvent* event) {
    if (!m_isDragging) {
        viewport()->setCursor(event->position().x() < marginWidth() ? Qt::ArrowCursor : Qt::IBeamCursor);
        return;
    }
    dragTo(event->position());
    if (viewport()->rect().contains(event->position().toPoint())) {
        m_dragScrolling.stop();
    } else if (!m_dragScrolling.isActive()) {
        m_dragScrolling.start(dragScrollInterval, this);
    }
}

void TextView::dragTo(QPointF position) {
    m_dragPosition = position;
    moveTo(offset(position), Anchor::stays);
}

void TextView::mouseReleaseEvent(QMouseEvent*) {
    m_isDragging = false;
    m_dragScrolling.stop();
}

void TextView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        const SourceRange word = TextNavigation::word(offset(event->position()), m_text);
        setSelection(word.lower, word.upper);
        m_sinceDoubleClick.start();
    }
}

void TextView::wheelEvent(QWheelEvent* event) {
    QPoint delta = event->pixelDelta();
    if (delta.isNull()) {
        const int notch = QApplication::wheelScrollLines() * m_lineHeight;
        delta = event->angleDelta() * notch / QWheelEvent::DefaultDeltasPerStep;
    }
    if (event->modifiers() & Qt::ShiftModifier) {
        delta = delta.transposed();
    }
    scrollTo(m_horizontal.value() - delta.x(), m_vertical.value() - delta.y());
    event->accept();
}

// Geometry

TextView::Stretch TextView::stretch(std::size_t line) {
    Stretch shown{m_text.lineRange(line), 0, nullptr};
    if (shown.range.length() > longLine) {
        const SourceRange whole = shown.range;
        const double firstColumn = std::floor(static_cast<double>(m_horizontal.value()) / m_digitWidth);
        const auto first = static_cast<Offset>(std::min<double>(firstColumn, whole.length()));
        const Offset skipped = first / stretchStep * stretchStep;
        const auto columns = static_cast<Offset>(viewport()->width() / m_digitWidth);
        const Offset lower = skipped < stretchStep ? 0 : skipped - stretchStep;
        const Offset upper = std::min(whole.length() - lower, columns + 4 * stretchStep) + lower;
        shown.range.lower =
            std::max(whole.lower, TextNavigation::characterStart(whole.lower + lower, m_text));
        shown.range.upper = TextNavigation::characterStart(whole.lower + upper, m_text);
        shown.left = (shown.range.lower - whole.lower) * m_digitWidth;
    }
    shown.layout = m_layouts.layout(m_text.units(shown.range));
    m_widest = std::max(m_widest, shown.left + shown.layout->lineAt(0).naturalTextWidth());
    return shown;
}

double TextView::x(Offset at, std::size_t line) {
    const Stretch shown = stretch(line);
    if (at < shown.range.lower) {
        return (at - m_text.lineStart(line)) * m_digitWidth;
    }
    const Offset inside = std::min(at, shown.range.upper) - shown.range.lower;
    const double beyond = (at - shown.range.lower - inside) * m_digitWidth;
    return shown.left + shown.layout->lineAt(0).cursorToX(static_cast<int>(inside)) + beyond;
}

Offset TextView::offset(std::size_t line, double atX) {
    const Stretch shown = stretch(line);
    const int inside = shown.layout->lineAt(0).xToCursor(atX - shown.left);
    const Offset nearest = shown.range.lower + static_cast<Offset>(inside);
    return std::min(TextNavigation::characterStart(nearest, m_text), TextNavigation::lineEnd(line, m_text));
}

Offset TextView::offset(QPointF at) {
    const std::size_t line = lineAt(m_vertical.value() + std::llround(at.y()));
    return offset(line, at.x() - textOrigin(line).x());
}

std::size_t TextView::lineAt(qint64 y) const {
    const auto last = static_cast<qint64>(m_text.lineCount()) - 1;
    return static_cast<std::size_t>(std::clamp<qint64>((y - padding) / m_lineHeight, 0, last));
}

QPointF TextView::textOrigin(std::size_t line) const {
    const qint64 y = qint64(line) * m_lineHeight + padding - m_vertical.value();
    return {static_cast<double>(marginWidth() + padding - m_horizontal.value()), static_cast<double>(y)};
}

QRect TextView::caretRect() {
    const std::size_t line = m_text.line(m_caret);
    const QPointF origin = textOrigin(line);
    if (origin.y() < -m_lineHeight || origin.y() > viewport()->height()) {
        return {};
    }
    return {static_cast<int>(std::floor(origin.x() + x(m_caret, line))), static_cast<int>(origin.y()),
            caretWidth, m_lineHeight};
}

int TextView::marginWidth() const {
    const auto digits = QString::number(m_text.lineCount()).size();
    return static_cast<int>(std::ceil(m_digitWidth * static_cast<double>(std::max<qsizetype>(3, digits)))) +
           3 * padding;
}

void TextView::updateFont() {
    const QFontMetricsF metrics(font());
    m_lineHeight = static_cast<int>(std::ceil(metrics.height() * 1.2));
    m_baseline = std::round((m_lineHeight - metrics.height()) / 2 + metrics.ascent());
    m_digitWidth = metrics.horizontalAdvance(u'0');
    m_layouts.setFont(font(), m_digitWidth * tabColumns);
    m_widest = 0;
    updateExtents();
}

void TextView::updateExtents() {
    const double widest = std::max(m_widest, m_text.longestLine() * m_digitWidth);
    const qint64 width = std::llround(widest) + marginWidth() + 2 * padding + caretWidth;
    const qint64 height = qint64(m_text.lineCount()) * m_lineHeight + 2 * padding;
    m_horizontal.setExtent(width, viewport()->width(), static_cast<int>(4 * m_digitWidth));
    m_vertical.setExtent(height, viewport()->height(), m_lineHeight);
}

void TextView::scrollTo(qint64 left, qint64 top) {
    const bool moved = m_horizontal.set(left);
    if (m_vertical.set(top) || moved) {
        viewport()->update();
    }
}

void TextView::scrollContentsBy(int, int) {
    m_horizontal.follow(horizontalScrollBar()->value());
    m_vertical.follow(verticalScrollBar()->value());
    viewport()->update();
}

void TextView::resizeEvent(QResizeEvent*) { updateExtents(); }

void TextView::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        updateFont();
    }
}

// Painting

void TextView::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    painter.setFont(font());
    painter.fillRect(event->rect(), palette().base());
    const double widestBefore = m_widest;
    const QRect area = viewport()->rect().adjusted(marginWidth(), 0, 0, 0);
    const std::size_t end = lineAt(m_vertical.value() + event->rect().bottom()) + 1;
    const std::size_t start = lineAt(m_vertical.value() + event->rect().top());

    if (selection().isEmpty()) {
        const double caretLine = textOrigin(m_text.line(m_caret)).y();
        painter.fillRect(QRectF(0, caretLine, viewport()->width(), m_lineHeight), palette().alternateBase());
    }
    painter.setClipRect(area);
    for (std::size_t line = start; line < end; ++line) {
        paintLine(painter, line);
    }
    if (hasFocus() && m_caretIsOn) {
        painter.fillRect(caretRect(), palette().text());
    }
    paintPreedit(painter);

    painter.setClipRect(event->rect());
    for (std::size_t line = start; line < end; ++line) {
        paintNumber(painter, line);
    }
    if (m_widest > widestBefore) {
        QTimer::singleShot(0, this, &TextView::updateExtents);
    }
}

void TextView::paintLine(QPainter& painter, std::size_t line) {
    const Stretch shown = stretch(line);
    const QPointF origin = textOrigin(line);
    const QPointF start = origin + QPointF(shown.left, 0);
    const SourceRange selected = selection();
    const SourceRange whole = m_text.lineRange(line);

    QList<QTextLayout::FormatRange> formats;
    const Offset lower = std::clamp(selected.lower, shown.range.lower, shown.range.upper);
    const Offset upper = std::clamp(selected.upper, shown.range.lower, shown.range.upper);
    if (lower < upper) {
        QTextCharFormat format;
        format.setBackground(palette().highlight());
        format.setForeground(palette().highlightedText());
        formats.append(
            {static_cast<int>(lower - shown.range.lower), static_cast<int>(upper - lower), format});
    }
    const QTextLine row = shown.layout->lineAt(0);
    const QPointF drawn = start + QPointF(0, m_baseline - row.ascent());
    if (selected.lower <= whole.upper && whole.upper < selected.upper) {
        // The selected line feed.
        const double end = start.x() + row.naturalTextWidth();
        painter.fillRect(QRectF(end, drawn.y(), m_digitWidth / 2, row.height()), palette().highlight());
    }
    painter.setPen(palette().color(QPalette::Text));
    shown.layout->draw(&painter, drawn, formats, viewport()->rect());
    paintUnderlines(painter, shown, start);
}

void TextView::paintUnderlines(QPainter& painter, const Stretch& shown, QPointF origin) {
    if (!m_underlines) {
        return;
    }
    const QTextLine row = shown.layout->lineAt(0);
    for (const Underline& underline : m_underlines(shown.range)) {
        const Offset lower = std::clamp(underline.range.lower, shown.range.lower, shown.range.upper);
        const Offset upper = std::clamp(underline.range.upper, lower, shown.range.upper);
        const double left = row.cursorToX(static_cast<int>(lower - shown.range.lower));
        const double right = row.cursorToX(static_cast<int>(upper - shown.range.lower));
        // Seen even where the range is empty or at the end of its line.
        const double from = std::max(origin.x() + left, -m_digitWidth);
        const double to =
            std::min<double>(origin.x() + std::max(right, left + m_digitWidth), viewport()->width());
        QPolygonF wave;
        for (double at = from; at <= to; at += 2) {
            const bool isLow = std::llround((at - from) / 2) % 2 == 0;
            wave << QPointF(at, origin.y() + m_lineHeight - (isLow ? 1 : 3));
        }
        painter.setPen(QPen(underline.color, 1));
        painter.drawPolyline(wave);
    }
}

void TextView::paintNumber(QPainter& painter, std::size_t line) const {
    const QString number = QString::number(line + 1);
    const double width = m_digitWidth * static_cast<double>(number.size());
    const bool isCurrent = line == m_text.line(m_caret);
    painter.setPen(palette().color(isCurrent ? QPalette::Text : QPalette::PlaceholderText));
    painter.drawText(QPointF(marginWidth() - 2 * padding - width, textOrigin(line).y() + m_baseline), number);
}

void TextView::paintPreedit(QPainter& painter) {
    if (m_preedit.isEmpty()) {
        return;
    }
    QFont underlined = font();
    underlined.setUnderline(true);
    painter.setFont(underlined);
    const QRectF box(caretRect().topLeft(),
                     QSizeF(painter.fontMetrics().horizontalAdvance(m_preedit), m_lineHeight));
    painter.fillRect(box, palette().alternateBase());
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(box, Qt::AlignLeft | Qt::AlignVCenter, m_preedit);
    painter.setFont(font());
}
