#pragma once

#include "SourceRange.h"

#include <QPainter>

#include <cstddef>

class TextView;

/// Paints what shows of a text view: the tint of the current line, the lines with their marks, the caret.
/// Good for one paint.
class TextViewPainter {
public:
    explicit TextViewPainter(TextView& view);

    /// Paints the lines that `area` of the viewport touches.
    void paint(const QRect& area);

private:
    void paintLine(std::size_t line);
    bool paintHighlights(std::size_t line, SourceRange shown);
    void paintUnderlines(std::size_t line, SourceRange shown);
    void paintCaret();

    TextView& m_view;
    QPainter m_painter;
};
