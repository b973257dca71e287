#include "TextViewPainter.h"

#include "TextMarks.h"
#include "TextView.h"
#include "TextViewMouse.h"

TextViewPainter::TextViewPainter(TextView& view) : m_view(view), m_painter(view.viewport()) {
    m_painter.setFont(view.font());
}

void TextViewPainter::paint(const QRect& area) {
    m_painter.fillRect(area, m_view.palette().base());
    if (m_view.selection().isEmpty()) {
        const std::size_t current = m_view.text().line(m_view.caret());
        m_painter.fillRect(m_view.lineRect(current), m_view.palette().alternateBase());
    }
    const std::size_t end = m_view.line(area.bottom()) + 1;
    for (std::size_t line = m_view.line(area.top()); line < end; ++line) {
        paintLine(line);
    }
    paintCaret();
}

void TextViewPainter::paintLine(std::size_t line) {
    const SourceRange shown = m_view.m_layout.stretch(line, m_view.left(), m_view.right());
    const bool isMatchSelected = paintHighlights(line, shown);
    const SourceRange selected =
        isMatchSelected ? SourceRange::empty(m_view.selection().upper) : m_view.selection();
    m_view.m_layout.draw(m_painter, line, m_view.origin(line), m_view.left(), m_view.right(), selected,
                         m_view.palette());
    paintUnderlines(line, shown);
}

/// Returns whether what is selected is one of them: the mark of the current one then stands for the
/// selection.
bool TextViewPainter::paintHighlights(std::size_t line, SourceRange shown) {
    using enum TextMarks::Highlight;
    if (!m_view.m_highlights) {
        return false;
    }
    const SourceRange selected = m_view.selection();
    bool hasCurrent = false;
    for (const SourceRange range : m_view.m_highlights(shown)) {
        const bool isCurrent = !selected.isEmpty() && range == selected;
        hasCurrent |= isCurrent;
        for (const QRectF& box : m_view.m_layout.boxes(TextMarks::part(range, shown), line)) {
            TextMarks::paintHighlight(m_painter, box.translated(m_view.origin(line)),
                                      isCurrent ? current : usual, m_view.palette());
        }
    }
    return hasCurrent;
}

void TextViewPainter::paintUnderlines(std::size_t line, SourceRange shown) {
    if (!m_view.m_underlines) {
        return;
    }
    const QRectF port(m_view.viewport()->rect());
    for (const TextView::Underline& underline : m_view.m_underlines(shown)) {
        const SourceRange part = TextMarks::part(underline.range, shown);
        std::vector<QRectF> boxes = m_view.m_layout.boxes(part, line);
        if (boxes.empty()) {
            // Seen even where the range is empty or at the end of its line.
            boxes.emplace_back(m_view.m_layout.x(part.lower), 0, m_view.m_layout.columnWidth(),
                               m_view.lineHeight());
        }
        for (const QRectF& box : boxes) {
            TextMarks::paintWave(m_painter, box.translated(m_view.origin(line)) & port, underline.color);
        }
    }
}

void TextViewPainter::paintCaret() {
    if (const auto place = m_view.m_mouse->dropPlace()) {
        m_painter.fillRect(m_view.caretRect(*place), m_view.palette().text());
    } else if (m_view.m_blinker.isOn()) {
        m_painter.fillRect(m_view.caretRect(), m_view.palette().text());
    }
}
