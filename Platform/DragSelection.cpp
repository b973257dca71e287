#include "DragSelection.h"

#include "TextNavigation.h"

#include <QGuiApplication>
#include <QStyleHints>

#include <algorithm>

namespace {

SourceRange lineAround(Offset at, const Rope& text) {
    const std::size_t line = text.line(at);
    const bool isLast = line + 1 == text.lineCount();
    return {text.lineStart(line), isLast ? text.size() : text.lineStart(line + 1)};
}

SourceRange around(Offset at, DragSelection::Granularity granularity, const Rope& text) {
    switch (granularity) {
    case DragSelection::Granularity::character:
        break;
    case DragSelection::Granularity::word:
        return TextNavigation::word(at, text);
    case DragSelection::Granularity::line:
        return lineAround(at, text);
    }
    return SourceRange::empty(at);
}

} // namespace

DragSelection::Granularity DragSelection::granularity(int clicks) {
    return clicks >= 3 ? Granularity::line : clicks == 2 ? Granularity::word : Granularity::character;
}

DragSelection::DragSelection(Offset at, Granularity granularity, const Rope& text)
    : DragSelection(around(at, granularity, text), granularity) {}

DragSelection DragSelection::extending(TextSelection selection, Granularity granularity, const Rope& text) {
    return {selection.anchor, granularity, text};
}

TextSelection DragSelection::selection(Offset at, const Rope& text) const {
    const SourceRange under = around(at, m_granularity, text);
    if (at < m_origin.lower) {
        return {m_origin.upper, under.lower};
    }
    return {m_origin.lower, std::max(under.upper, m_origin.upper)};
}

int ClickCounter::single(QPointF at) {
    const QStyleHints* hints = QGuiApplication::styleHints();
    const bool isThird = m_sinceSecond.isValid() &&
                         m_sinceSecond.elapsed() <= hints->mouseDoubleClickInterval() &&
                         (at - m_place).manhattanLength() <= hints->mouseDoubleClickDistance();
    m_sinceSecond.invalidate();
    return isThird ? 3 : 1;
}

int ClickCounter::twice(QPointF at) {
    m_sinceSecond.start();
    m_place = at;
    return 2;
}
