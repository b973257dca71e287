#include "TextInputMethod.h"

#include "TextNavigation.h"

#include <QInputMethodEvent>

#include <algorithm>

namespace {

constexpr Offset reach = 256;

QString string(SourceRange range, const Rope& text) { return QString::fromStdU16String(text.units(range)); }

/// `at` as an input method counts it, the nearest end of `seen` when it lies outside.
int place(Offset at, SourceRange seen) {
    return static_cast<int>(std::clamp(at, seen.lower, seen.upper) - seen.lower);
}

Offset inside(std::int64_t at, const Rope& text) {
    return static_cast<Offset>(std::clamp<std::int64_t>(at, 0, text.size()));
}

} // namespace

SourceRange TextInputMethod::surroundings(Offset caret, const Rope& in) {
    const Offset lower = caret - std::min(caret, reach);
    const Offset upper = caret + std::min(in.size() - caret, reach);
    const Offset start = TextNavigation::characterStart(lower, in);
    return SourceRange::unchecked(start == lower ? lower : TextNavigation::nextCharacter(start, in),
                                  std::max(caret, TextNavigation::characterStart(upper, in)));
}

TextLayout::Preedit TextInputMethod::preedit(const QInputMethodEvent& event) {
    TextLayout::Preedit preedit{event.preeditString(), {}, static_cast<int>(event.preeditString().size())};
    const auto length = static_cast<int>(preedit.text.size());
    for (const QInputMethodEvent::Attribute& attribute : event.attributes()) {
        const int start = std::clamp(attribute.start, 0, length);
        if (attribute.type == QInputMethodEvent::Cursor) {
            preedit.caret = start;
        } else if (attribute.type == QInputMethodEvent::TextFormat) {
            const QTextCharFormat format = attribute.value.value<QTextFormat>().toCharFormat();
            const int count = std::clamp(attribute.length, 0, length - start);
            if (format.isValid() && count > 0) {
                preedit.formats.append({start, count, format});
            }
        }
    }
    if (preedit.formats.isEmpty() && length > 0) {
        QTextCharFormat underlined;
        underlined.setFontUnderline(true);
        preedit.formats.append({0, length, underlined});
    }
    return preedit;
}

SourceRange TextInputMethod::replacedRange(const QInputMethodEvent& event, Offset caret, const Rope& in) {
    const Offset start = inside(std::int64_t(caret) + event.replacementStart(), in);
    return {start, inside(std::int64_t(start) + std::max(0, event.replacementLength()), in)};
}

std::optional<TextSelection> TextInputMethod::wantedSelection(const QInputMethodEvent& event, Offset caret,
                                                              const Rope& in) {
    std::optional<TextSelection> wanted;
    const Offset first = surroundings(caret, in).lower;
    for (const QInputMethodEvent::Attribute& attribute : event.attributes()) {
        if (attribute.type == QInputMethodEvent::Selection) {
            const std::int64_t start = std::int64_t(first) + attribute.start;
            wanted = {TextNavigation::characterStart(inside(start, in), in),
                      TextNavigation::characterStart(inside(start + attribute.length, in), in)};
        }
    }
    return wanted;
}

QVariant TextInputMethod::answer(Qt::InputMethodQuery query, TextSelection selection, const Rope& in) {
    const SourceRange seen = surroundings(selection.caret, in);
    const auto part = [&](Offset lower, Offset upper) {
        return string(SourceRange::unchecked(std::clamp(lower, seen.lower, seen.upper),
                                             std::clamp(upper, seen.lower, seen.upper)),
                      in);
    };
    switch (query) {
    case Qt::ImSurroundingText:
        return string(seen, in);
    case Qt::ImCursorPosition:
        return place(selection.caret, seen);
    case Qt::ImAnchorPosition:
        return place(selection.anchor, seen);
    case Qt::ImCurrentSelection:
        return part(selection.range().lower, selection.range().upper);
    case Qt::ImTextBeforeCursor:
        return part(seen.lower, selection.caret);
    case Qt::ImTextAfterCursor:
        return part(selection.caret, seen.upper);
    default:
        return {};
    }
}
