#include "TextLayout.h"

#include "TextNavigation.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace {

constexpr Offset longLine = 512;     ///< Units from which on only a stretch of a line is laid out.
constexpr Offset segmentUnits = 256; ///< Stretches start at multiples of it, so that scrolling reuses them.
constexpr int tabColumns = 4;

} // namespace

TextLayout::TextLayout() { setFont(QFont()); }

TextLayout::~TextLayout() = default;

void TextLayout::setFont(const QFont& font) {
    const QFontMetricsF metrics(font);
    m_lineHeight = static_cast<int>(std::ceil(metrics.height() * 1.2));
    m_baseline = std::round((m_lineHeight - metrics.height()) / 2 + metrics.ascent());
    m_columnWidth = metrics.horizontalAdvance(u'0');
    m_layouts.setFont(font, m_columnWidth * tabColumns);
    m_widest = 0;
}

void TextLayout::setText(const Rope& text) {
    m_text = text;
    m_widest = 0;
    m_preeditAt = 0;
    m_preedit = {};
    m_attributes.clear();
}

void TextLayout::edit(const Rope& text, SourceRange edited, std::int64_t changeInLength) {
    m_text = text;
    const auto oldUpper = static_cast<Offset>(edited.upper - changeInLength);
    std::vector<Attributed> kept;
    for (const Attributed& run : m_attributes) {
        const auto moved = [&](Offset at) {
            return at <= edited.lower ? at
                   : at >= oldUpper   ? static_cast<Offset>(at + changeInLength)
                                      : edited.lower;
        };
        const SourceRange range = SourceRange::unchecked(moved(run.range.lower), moved(run.range.upper));
        if (!range.isEmpty()) {
            kept.push_back({range, run.attributes});
        }
    }
    m_attributes = std::move(kept);
}

double TextLayout::width() const { return std::max(m_widest, m_text.longestLine() * m_columnWidth); }

TextLayout::Shown TextLayout::shown(std::size_t line, double left, double right) {
    const SourceRange whole =
        SourceRange::unchecked(m_text.lineStart(line), TextNavigation::lineEnd(line, m_text));
    Shown shown{whole, 0, nullptr};
    if (whole.length() > longLine) {
        const auto column = [&](double x) {
            return static_cast<Offset>(std::clamp<double>(x / m_columnWidth, 0, whole.length()));
        };
        const Offset first = column(left) / segmentUnits * segmentUnits;
        const Offset lower = first < segmentUnits ? 0 : first - segmentUnits;
        const Offset upper = std::min(whole.length(), (column(right) / segmentUnits + 2) * segmentUnits);
        shown.range.lower =
            std::max(whole.lower, TextNavigation::characterStart(whole.lower + lower, m_text));
        shown.range.upper = TextNavigation::characterStart(whole.lower + upper, m_text);
        shown.left = (shown.range.lower - whole.lower) * m_columnWidth;
    }
    shown.layout = m_layouts.layout(m_text.units(shown.range));
    m_widest = std::max(m_widest, shown.left + shown.layout->lineAt(0).naturalTextWidth());
    return shown;
}

double TextLayout::x(Offset at) {
    const std::size_t line = m_text.line(at);
    const double guess = (at - m_text.lineStart(line)) * m_columnWidth;
    const Shown stretch = shown(line, guess, guess);
    const Offset inside = std::clamp(at, stretch.range.lower, stretch.range.upper) - stretch.range.lower;
    return stretch.left + stretch.layout->lineAt(0).cursorToX(static_cast<int>(inside));
}

Offset TextLayout::offset(std::size_t line, double x) {
    const Shown stretch = shown(line, x, x);
    const int inside = stretch.layout->lineAt(0).xToCursor(x - stretch.left);
    const Offset nearest = stretch.range.lower + static_cast<Offset>(inside);
    return std::min(TextNavigation::characterStart(nearest, m_text), TextNavigation::lineEnd(line, m_text));
}

SourceRange TextLayout::stretch(std::size_t line, double left, double right) {
    return shown(line, left, right).range;
}

std::vector<QRectF> TextLayout::boxes(SourceRange range, std::size_t line) {
    const SourceRange whole = m_text.lineRange(line);
    const Offset end = TextNavigation::lineEnd(line, m_text);
    if (range.upper <= whole.lower || range.lower > whole.upper || range.isEmpty()) {
        return {};
    }
    const double left = x(std::clamp(range.lower, whole.lower, end));
    double right = x(std::clamp(range.upper, whole.lower, end));
    if (range.upper > whole.upper) {
        right += m_columnWidth / 2;
    }
    return right > left ? std::vector{QRectF(left, 0, right - left, m_lineHeight)} : std::vector<QRectF>();
}

void TextLayout::setTemporaryAttributes(SourceRange range, const TemporaryAttributes& attributes) {
    removeTemporaryAttributes(range);
    if (!range.isEmpty() && attributes != TemporaryAttributes()) {
        const auto next = std::ranges::lower_bound(m_attributes, range.lower, {},
                                                   [](const Attributed& run) { return run.range.lower; });
        m_attributes.insert(next, {range, attributes});
    }
}

void TextLayout::removeTemporaryAttributes(SourceRange range) {
    std::vector<Attributed> kept;
    for (const Attributed& run : m_attributes) {
        const Offset before = std::min(run.range.upper, range.lower);
        const Offset after = std::max(run.range.lower, range.upper);
        if (run.range.lower < before) {
            kept.push_back({SourceRange::unchecked(run.range.lower, before), run.attributes});
        }
        if (after < run.range.upper) {
            kept.push_back({SourceRange::unchecked(after, run.range.upper), run.attributes});
        }
    }
    m_attributes = std::move(kept);
}

void TextLayout::setPreedit(Offset at, Preedit preedit) {
    m_preeditAt = at;
    m_preedit = std::move(preedit);
}

void TextLayout::draw(QPainter& painter, std::size_t line, QPointF origin, double left, double right,
                      SourceRange selected, const QPalette& palette) {
    const Shown stretch = shown(line, left, right);
    QList<QTextLayout::FormatRange> formats;
    const auto add = [&](SourceRange range, const QTextCharFormat& format) {
        const Offset lower = std::clamp(range.lower, stretch.range.lower, stretch.range.upper);
        const Offset upper = std::clamp(range.upper, stretch.range.lower, stretch.range.upper);
        if (lower < upper) {
            formats.append(
                {static_cast<int>(lower - stretch.range.lower), static_cast<int>(upper - lower), format});
        }
    };
    for (const Attributed& run : m_attributes) {
        QTextCharFormat format;
        if (run.attributes.foreground.isValid()) {
            format.setForeground(run.attributes.foreground);
        }
        format.setFontUnderline(run.attributes.underline == TemporaryAttributes::Underline::thick);
        add(run.range, format);
    }
    QTextCharFormat highlight;
    highlight.setForeground(palette.highlightedText());
    add(selected, highlight);
    for (const QRectF& box : boxes(selected, line)) {
        painter.fillRect(box.translated(origin), palette.highlight());
    }
    painter.setPen(palette.color(QPalette::Text));
    const QPointF drawn = origin + QPointF(stretch.left, m_baseline - stretch.layout->lineAt(0).ascent());
    stretch.layout->draw(&painter, drawn, formats);
}
