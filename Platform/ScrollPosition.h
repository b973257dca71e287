#pragma once

#include <QtGlobal>

class QScrollBar;

/// A position along one axis of a document in 64-bit pixels, shown by a scroll bar whose own numbers have
/// only 31 bits: beyond 2^30 pixels the bar counts in larger steps, while the position stays exact.
class ScrollPosition {
public:
    /// `bar` outlives this value.
    explicit ScrollPosition(QScrollBar& bar) : m_bar(bar) {}

    qint64 value() const { return m_value; }
    qint64 maximum() const { return m_maximum; }

    /// The document is `extent` pixels long, of which `page` are seen at once and `line` are one step. Moves
    /// the position when it lies beyond the new end.
    void setExtent(qint64 extent, int page, int line);

    /// Goes to `value`, or to the nearest end. Answers whether that moved anything.
    bool set(qint64 value);

    /// Takes over what the user did to the bar; it told `barValue`. Nothing when the bar only follows.
    void follow(int barValue);

private:
    void showOnBar();

    QScrollBar& m_bar;
    qint64 m_value = 0;
    qint64 m_maximum = 0;
    qint64 m_scale = 1; ///< Pixels in one step of the bar.
    bool m_isShowing = false;
};
