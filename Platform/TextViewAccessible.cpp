#include "TextViewAccessible.h"

#include "SourceText.h"
#include "TextNavigation.h"
#include "TextView.h"

#include <algorithm>
#include <limits>

namespace {

constexpr Offset longestAnswer = 1 << 20; ///< Units told at once.
constexpr Offset longestLine = 1 << 16;   ///< Of a line, around the place that is asked about.
constexpr int mostBlanks = 8;             ///< Runs of white space between words that are passed over.
constexpr Offset longestNotice = 4096;    ///< Units of an edit that are told.

int count(Offset offset) {
    return static_cast<int>(std::min<Offset>(offset, std::numeric_limits<int>::max()));
}

SourceRange firstPart(SourceRange range, Offset longest) {
    return SourceRange::unchecked(range.lower, range.lower + std::min(range.length(), longest));
}

/// The units as characters that any reader takes, one for one.
QString readable(SourceRange range, const Rope& text) {
    return QString::fromStdU16String(repaired(text.units(range))).replace(QChar(u'\0'), QChar(u'\uFFFD'));
}

SourceRange lineAround(Offset at, const Rope& text) {
    const std::size_t line = text.line(at);
    const Offset start = text.lineStart(line);
    const Offset end = line + 1 == text.lineCount() ? text.size() : text.lineStart(line + 1);
    const Offset half = longestLine / 2;
    return SourceRange::unchecked(std::max(start, at - std::min(at, half)), at + std::min(end - at, half));
}

/// The piece of the text that `at` lies in, as a reader goes through it.
SourceRange around(Offset at, QAccessible::TextBoundaryType boundary, const Rope& text) {
    const Offset start = TextNavigation::characterStart(at, text);
    const SourceRange character = SourceRange::unchecked(start, TextNavigation::nextCharacter(start, text));
    switch (boundary) {
    case QAccessible::CharBoundary:
        return character;
    case QAccessible::WordBoundary: {
        const SourceRange word = TextNavigation::word(at, text);
        return word.contains(at) ? word : character; // Between lines there is no word.
    }
    case QAccessible::SentenceBoundary:
    case QAccessible::ParagraphBoundary:
    case QAccessible::LineBoundary:
        return lineAround(at, text);
    case QAccessible::NoBoundary:
        break;
    }
    return firstPart(text.fullRange(), longestAnswer);
}

bool isBlank(SourceRange range, const Rope& text) {
    return std::ranges::all_of(text.units(range), [](char16_t unit) { return QChar::isSpace(unit); });
}

QAccessibleInterface* make(const QString&, QObject* object) {
    auto* view = qobject_cast<TextView*>(object);
    return view != nullptr ? new TextViewAccessible(*view) : nullptr;
}

} // namespace

TextViewAccessible::TextViewAccessible(TextView& view)
    : QAccessibleWidget(&view, QAccessible::EditableText) {}

void TextViewAccessible::install() {
    static const bool isInstalled = (QAccessible::installFactory(make), true);
    static_cast<void>(isInstalled);
}

void TextViewAccessible::announceEdit(TextView& view, const Rope& before, SourceRange replaced, Offset length,
                                      const Rope& now) {
    if (QAccessible::isActive()) {
        QAccessible::updateAccessibility(editEvent(view, before, replaced, length, now).get());
    }
}

std::unique_ptr<QAccessibleEvent> TextViewAccessible::editEvent(TextView& view, const Rope& before,
                                                                SourceRange replaced, Offset length,
                                                                const Rope& now) {
    const int at = count(replaced.lower);
    const QString removed = readable(firstPart(replaced, longestNotice), before);
    const QString inserted = readable(firstPart(SourceRange::at(replaced.lower, length), longestNotice), now);
    if (removed.isEmpty()) {
        return std::make_unique<QAccessibleTextInsertEvent>(&view, at, inserted);
    }
    if (inserted.isEmpty()) {
        return std::make_unique<QAccessibleTextRemoveEvent>(&view, at, removed);
    }
    return std::make_unique<QAccessibleTextUpdateEvent>(&view, at, removed, inserted);
}

void TextViewAccessible::announceCaret(TextView& view) {
    if (!QAccessible::isActive()) {
        return;
    }
    const SourceRange selected = view.selection();
    QAccessibleTextSelectionEvent selection(&view, count(selected.lower), count(selected.upper));
    selection.setCursorPosition(count(view.caret()));
    QAccessible::updateAccessibility(&selection);
    QAccessibleTextCursorEvent caret(&view, count(view.caret()));
    QAccessible::updateAccessibility(&caret);
}

TextView& TextViewAccessible::view() const { return *static_cast<TextView*>(widget()); }

void* TextViewAccessible::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::TextInterface) {
        return static_cast<QAccessibleTextInterface*>(this);
    }
    if (type == QAccessible::EditableTextInterface) {
        return static_cast<QAccessibleEditableTextInterface*>(this);
    }
    return QAccessibleWidget::interface_cast(type);
}

QAccessible::State TextViewAccessible::state() const {
    QAccessible::State state = QAccessibleWidget::state();
    state.editable = true;
    state.multiLine = true;
    state.selectableText = true;
    return state;
}

QString TextViewAccessible::text(QAccessible::Text kind) const {
    return kind == QAccessible::Value ? text(0, characterCount()) : QAccessibleWidget::text(kind);
}

Offset TextViewAccessible::inside(int offset) const {
    return std::min(static_cast<Offset>(std::max(0, offset)), view().text().size());
}

SourceRange TextViewAccessible::rangeInside(int start, int end) const {
    const Offset lower = inside(start);
    // A negative end stands for the end of the text.
    return SourceRange::unchecked(lower, end < 0 ? view().text().size() : std::max(lower, inside(end)));
}

QString TextViewAccessible::told(SourceRange range, int* startOffset, int* endOffset) const {
    *startOffset = count(range.lower);
    *endOffset = count(range.upper);
    return readable(range, view().text());
}

void TextViewAccessible::selection(int index, int* startOffset, int* endOffset) const {
    const SourceRange selected = index == 0 ? view().selection() : SourceRange();
    *startOffset = count(selected.lower);
    *endOffset = count(selected.upper);
}

int TextViewAccessible::selectionCount() const { return view().selection().isEmpty() ? 0 : 1; }

void TextViewAccessible::addSelection(int startOffset, int endOffset) {
    setSelection(0, startOffset, endOffset);
}

void TextViewAccessible::removeSelection(int index) {
    if (index == 0) {
        view().select(TextSelection::at(view().caret()));
    }
}

void TextViewAccessible::setSelection(int index, int startOffset, int endOffset) {
    if (index == 0) {
        view().select(TextSelection{inside(startOffset), inside(endOffset)});
        view().scrollToVisible(SourceRange::empty(view().caret()));
    }
}

int TextViewAccessible::cursorPosition() const { return count(view().caret()); }

void TextViewAccessible::setCursorPosition(int position) { setSelection(0, position, position); }

QString TextViewAccessible::text(int startOffset, int endOffset) const {
    return readable(firstPart(rangeInside(startOffset, endOffset), longestAnswer), view().text());
}

QString TextViewAccessible::textAtOffset(int offset, QAccessible::TextBoundaryType boundary, int* startOffset,
                                         int* endOffset) const {
    return told(around(inside(offset), boundary, view().text()), startOffset, endOffset);
}

QString TextViewAccessible::textBeforeOffset(int offset, QAccessible::TextBoundaryType boundary,
                                             int* startOffset, int* endOffset) const {
    const Rope& text = view().text();
    const auto before = [&](SourceRange piece) {
        return piece.lower == 0 ? SourceRange() : around(piece.lower - 1, boundary, text);
    };
    SourceRange piece = before(around(inside(offset), boundary, text));
    for (int i = 0; i < mostBlanks && boundary == QAccessible::WordBoundary && isBlank(piece, text); ++i) {
        piece = before(piece);
    }
    return told(piece, startOffset, endOffset);
}

QString TextViewAccessible::textAfterOffset(int offset, QAccessible::TextBoundaryType boundary,
                                            int* startOffset, int* endOffset) const {
    const Rope& text = view().text();
    const auto after = [&](SourceRange piece) {
        return piece.upper == text.size() ? SourceRange::empty(text.size())
                                          : around(piece.upper, boundary, text);
    };
    SourceRange piece = after(around(inside(offset), boundary, text));
    for (int i = 0; i < mostBlanks && boundary == QAccessible::WordBoundary && isBlank(piece, text); ++i) {
        piece = after(piece);
    }
    return told(piece, startOffset, endOffset);
}

int TextViewAccessible::characterCount() const { return count(view().text().size()); }

QRect TextViewAccessible::characterRect(int offset) const {
    const Rope& text = view().text();
    const Offset start = TextNavigation::characterStart(inside(offset), text);
    const Offset end = TextNavigation::nextCharacter(start, text);
    QRectF box = view().caretRect(start);
    if (text.line(end) == text.line(start) && end > start) {
        const double other = view().caretRect(end).left();
        box.setRight(std::max(box.left(), other));
        box.setLeft(std::min(box.left(), other));
    }
    return {view().viewport()->mapToGlobal(box.topLeft().toPoint()), box.size().toSize()};
}

int TextViewAccessible::offsetAtPoint(const QPoint& point) const {
    return count(view().offset(QPointF(view().viewport()->mapFromGlobal(point))));
}

void TextViewAccessible::scrollToSubstring(int startIndex, int endIndex) {
    view().scrollToVisible(rangeInside(startIndex, endIndex));
}

QString TextViewAccessible::attributes(int offset, int* startOffset, int* endOffset) const {
    const SourceRange line = lineAround(inside(offset), view().text());
    *startOffset = count(line.lower);
    *endOffset = count(line.upper);
    return {};
}

void TextViewAccessible::deleteText(int startOffset, int endOffset) {
    view().replace(rangeInside(startOffset, endOffset), {}, QStringLiteral("Eliminar"));
}

void TextViewAccessible::insertText(int offset, const QString& text) {
    view().replace(SourceRange::empty(inside(offset)), text.toStdU16String(), QStringLiteral("Escribir"));
}

void TextViewAccessible::replaceText(int startOffset, int endOffset, const QString& text) {
    view().replace(rangeInside(startOffset, endOffset), text.toStdU16String(), QStringLiteral("Escribir"));
}
