#pragma once

#include "Rope.h"
#include "TextSelection.h"

#include <QElapsedTimer>
#include <QPointF>

#include <cstdint>

/// What the mouse selects from a press to the release: caret positions after one click, words after two,
/// lines after three. What was selected by the press stays selected, whichever way the mouse goes.
class DragSelection {
public:
    enum class Granularity : std::uint8_t { character, word, line };

    static Granularity granularity(int clicks);

    /// The press was at `at`.
    DragSelection(Offset at, Granularity granularity, const Rope& text);

    /// The press extends `selection` from its anchor, as with Shift.
    static DragSelection extending(TextSelection selection, Granularity granularity, const Rope& text);

    /// What is selected when the mouse is over the caret position `at`.
    TextSelection selection(Offset at, const Rope& text) const;

private:
    DragSelection(SourceRange origin, Granularity granularity)
        : m_origin(origin), m_granularity(granularity) {}

    SourceRange m_origin;
    Granularity m_granularity;
};

/// Tells a third click in one place from a first one, which the event of a press does not.
class ClickCounter {
public:
    int single(QPointF at); ///< 1 or 3.
    int twice(QPointF at);  ///< 2.

private:
    QElapsedTimer m_sinceSecond;
    QPointF m_place;
};
