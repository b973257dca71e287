#include "TextLayout.h"

#include "StringUnits.h"
#include "TextNavigation.h"

#include <QFontMetricsF>
#include <QPaintDevice>
#include <QPainter>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace {

constexpr Offset longestShortLine = 512; ///< Units of a line that is laid out in one piece.
constexpr std::size_t longLineCapacity = 128;

/// The same place on the edge of a device pixel.
double snapped(double place, const QPainter& painter) {
    const double ratio = painter.device()->devicePixelRatioF();
    return std::round(place * ratio) / ratio;
}

QRectF snapped(const QRectF& box, const QPainter& painter) {
    return {QPointF(snapped(box.left(), painter), snapped(box.top(), painter)),
            QPointF(snapped(box.right(), painter), snapped(box.bottom(), painter))};
}

/// The part of `range` in `whole`.
SourceRange clamped(SourceRange range, SourceRange whole) {
    return SourceRange::unchecked(std::clamp(range.lower, whole.lower, whole.upper),
                                  std::clamp(range.upper, whole.lower, whole.upper));
}

} // namespace

TextLayout::TextLayout() { useFont(QFont()); }

TextLayout::~TextLayout() = default;

void TextLayout::setFont(const QFont& font) {
    if (font != m_font) {
        useFont(font);
    }
}

void TextLayout::useFont(const QFont& font) {
    const QFontMetricsF metrics(font);
    m_font = font;
    m_lineHeight = static_cast<int>(std::ceil(metrics.height() * 1.2));
    m_baseline = std::round((m_lineHeight - metrics.height()) / 2 + metrics.ascent());
    m_longLines.clear();
    m_advances = CharacterAdvances(font);
    m_shapedTexts.setFont(font, m_advances.tab());
    m_widest = 0;
}

void TextLayout::setText(const Rope& text) {
    m_text = text;
    m_longLines.clear();
    m_attributes.reset(text.size());
    m_preedit = {};
    m_widest = 0;
}

void TextLayout::moveTo(const Rope& same) {
    m_text = same;
    for (const auto& line : m_longLines) {
        line->segments.moveTo(m_text.part(SourceRange::at(line->start, line->segments.line().size())));
    }
}

void TextLayout::edit(const Rope& text, SourceRange edited, std::int64_t changeInLength) {
    const Offset longestBefore = m_text.longestLine();
    const auto oldUpper = static_cast<Offset>(edited.upper - changeInLength);
    m_text = text;
    m_attributes.edit(edited, changeInLength);
    if (text.longestLine() < longestBefore) {
        m_widest = 0;
    }
    std::erase_if(m_longLines, [&](const std::unique_ptr<LongLine>& line) {
        LineSegments& segments = line->segments;
        const Offset oldEnd = line->start + segments.line().size();
        if (oldUpper < line->start) {
            line->start = static_cast<Offset>(line->start + changeInLength);
            return false;
        }
        // A CR and LF behind the line may be about to go.
        if (edited.lower > oldEnd && edited.lower - oldEnd > 2) {
            return false;
        }
        if (edited.lower < line->start || oldUpper > oldEnd) {
            return true;
        }
        const SourceRange now = content(m_text.line(line->start));
        if (now.lower != line->start || now.length() != segments.line().size() + changeInLength ||
            !isLong(now)) {
            return true;
        }
        segments.edit(m_text.part(now), edited.shifted(-std::int64_t(line->start)), changeInLength);
        line->isBuilt = false;
        return false;
    });
}

double TextLayout::width() const { return std::max(m_widest, m_text.longestLine() * columnWidth()); }

bool TextLayout::buildMore() {
    for (const auto& line : m_longLines) {
        if (!line->isBuilt) {
            line->isBuilt = !line->segments.buildMore();
            noteWidth(line->segments.width());
            break;
        }
    }
    return std::ranges::any_of(m_longLines, [](const auto& line) { return !line->isBuilt; });
}

double TextLayout::x(Offset at) {
    const SourceRange content = this->content(m_text.line(at));
    const Offset inside = std::min(at, content.upper);
    const Piece piece = this->piece(content, inside);
    return piece.left + piece.shaped->x(insideCaret(piece, inside));
}

Offset TextLayout::offset(std::size_t line, double x) {
    const std::vector<Piece> found = pieces(content(line), x, x);
    const auto right = std::ranges::find_if(found, [&](const Piece& piece) { return x < piece.right(); });
    const Piece& piece = right == found.end() ? found.back() : *right;
    return outside(piece, piece.shaped->offset(x - piece.left));
}

SourceRange TextLayout::stretch(std::size_t line, double left, double right) {
    const SourceRange content = this->content(line);
    if (!isLong(content)) {
        return content;
    }
    const std::vector<Piece> found = pieces(content, left, right);
    SourceRange range = SourceRange::unchecked(found.front().range.lower, found.back().range.upper);
    LineSegments& segments = longLine(content).segments;
    if (range.lower > content.lower) {
        range.lower = content.lower + segments.segmentHolding(range.lower - content.lower - 1).range.lower;
    }
    if (range.upper < content.upper) {
        range.upper = content.lower + segments.segmentHolding(range.upper - content.lower).range.upper;
    }
    return range;
}

std::vector<QRectF> TextLayout::boxes(SourceRange range, std::size_t line) {
    const SourceRange content = this->content(line);
    const Offset lineFeed = m_text.lineRange(line).upper;
    std::vector<QRectF> boxes;
    if (range.isEmpty() || range.upper < content.lower || range.lower > lineFeed) {
        return boxes;
    }
    const SourceRange selected = clamped(range, content);
    if (!selected.isEmpty()) {
        const Piece first = piece(content, selected.lower);
        addBoxes(boxes, first, selected);
        if (selected.upper > first.range.upper) {
            const Piece last = piece(content, selected.upper - 1);
            addBox(boxes, first.right(), last.left);
            addBoxes(boxes, last, selected);
        }
    }
    if (range.upper > content.upper && lineFeed < m_text.size()) {
        const Piece last = piece(content, content.upper);
        addBox(boxes, last.right(), last.right() + columnWidth() / 2);
    }
    return boxes;
}

void TextLayout::setTemporaryAttributes(SourceRange range, const TemporaryAttributes& attributes) {
    m_attributes.set(range, attributes);
}

void TextLayout::removeTemporaryAttributes(SourceRange range) { m_attributes.set(range, {}); }

void TextLayout::setPreedit(Offset at, Preedit preedit) {
    m_preeditAt = at;
    m_preedit = std::move(preedit);
}

// Lines and their pieces

SourceRange TextLayout::content(std::size_t line) const {
    return SourceRange::unchecked(m_text.lineStart(line), TextNavigation::lineEnd(line, m_text));
}

bool TextLayout::isLong(SourceRange content) { return content.length() > longestShortLine; }

TextLayout::LongLine& TextLayout::longLine(SourceRange content) {
    const auto known =
        std::ranges::find(m_longLines, content.lower, [](const auto& line) { return line->start; });
    if (known != m_longLines.end()) {
        (*known)->lastUse = ++m_uses;
        return **known;
    }
    if (m_longLines.size() == longLineCapacity) {
        m_longLines.erase(
            std::ranges::min_element(m_longLines, {}, [](const auto& line) { return line->lastUse; }));
    }
    m_longLines.push_back(std::unique_ptr<LongLine>(
        new LongLine{content.lower, ++m_uses, false, LineSegments(m_text.part(content), m_advances)}));
    return *m_longLines.back();
}

TextLayout::Piece TextLayout::shape(SourceRange range, double left, bool isLast) {
    Piece piece{range, left, nullptr};
    std::u16string units = m_text.units(range);
    const bool holdsPreedit = !m_preedit.text.isEmpty() && range.lower <= m_preeditAt &&
                              (m_preeditAt < range.upper || (isLast && m_preeditAt == range.upper));
    if (holdsPreedit) {
        piece.preeditAt = static_cast<int>(m_preeditAt - range.lower);
        piece.preeditLength = static_cast<int>(m_preedit.text.size());
        units.insert(m_preeditAt - range.lower, unitsOf(m_preedit.text));
    }
    piece.shaped = m_shapedTexts.shaped(units);
    return piece;
}

TextLayout::Piece TextLayout::shape(LongLine& longLine, const LineSegments::Segment& segment) {
    const SourceRange range = segment.range.shifted(longLine.start);
    Piece piece = shape(range, segment.left, segment.range.upper == longLine.segments.line().size());
    const bool holdsPreedit = piece.preeditAt >= 0;
    const double width =
        holdsPreedit ? m_shapedTexts.shaped(m_text.units(range))->width() : piece.shaped->width();
    if (width != segment.width) {
        longLine.segments.setWidth(segment, width);
    }
    return piece;
}

std::optional<TextLayout::Push> TextLayout::push(LongLine& longLine) {
    const Offset size = longLine.segments.line().size();
    if (m_preedit.text.isEmpty() || m_preeditAt < longLine.start || m_preeditAt - longLine.start > size) {
        return std::nullopt;
    }
    const auto segment = longLine.segments.segmentHolding(m_preeditAt - longLine.start);
    const Piece piece = shape(longLine, segment);
    const double without = m_shapedTexts.shaped(m_text.units(piece.range))->width();
    return Push{piece.range.upper, piece.left, piece.shaped->width() - without};
}

TextLayout::Piece TextLayout::piece(SourceRange content, Offset holding) {
    if (!isLong(content)) {
        Piece whole = shape(content, 0, true);
        noteWidth(whole.right());
        return whole;
    }
    LongLine& line = longLine(content);
    Piece piece = shape(line, line.segments.segmentHolding(holding - content.lower));
    const auto pushed = push(line);
    if (pushed && piece.range.lower >= pushed->from) {
        piece.left += pushed->extra;
    }
    noteWidth(line.segments.width() + (pushed ? pushed->extra : 0));
    return piece;
}

std::vector<TextLayout::Piece> TextLayout::pieces(SourceRange content, double left, double right) {
    std::vector<Piece> found;
    if (!isLong(content)) {
        found.push_back(piece(content, content.lower));
        return found;
    }
    LongLine& line = longLine(content);
    const auto pushed = push(line);
    const bool isBehind = pushed && left > pushed->left;
    auto segment = line.segments.segmentAt(isBehind ? std::max(pushed->left, left - pushed->extra) : left);
    for (;;) {
        Piece piece = shape(line, segment);
        if (pushed && piece.range.lower >= pushed->from) {
            piece.left += pushed->extra;
        }
        const bool isLast = piece.range.upper == content.upper;
        const double end = piece.right();
        if (end > left || isLast) {
            found.push_back(std::move(piece));
        }
        if (isLast || end > right) {
            break;
        }
        segment = line.segments.segmentHolding(segment.range.upper);
    }
    noteWidth(line.segments.width() + (pushed ? pushed->extra : 0));
    return found;
}

// Offsets of a piece with a preedit in it

int TextLayout::inside(const Piece& piece, Offset at) const {
    const auto inside = static_cast<int>(at - piece.range.lower);
    return piece.preeditAt >= 0 && inside >= piece.preeditAt ? inside + piece.preeditLength : inside;
}

int TextLayout::insideCaret(const Piece& piece, Offset at) const {
    const auto inside = static_cast<int>(at - piece.range.lower);
    return inside == piece.preeditAt ? inside + std::clamp(m_preedit.caret, 0, piece.preeditLength)
                                     : this->inside(piece, at);
}

Offset TextLayout::outside(const Piece& piece, int inside) const {
    if (piece.preeditAt >= 0 && inside > piece.preeditAt) {
        inside = std::max(piece.preeditAt, inside - piece.preeditLength);
    }
    return piece.range.lower + static_cast<Offset>(inside);
}

void TextLayout::addBox(std::vector<QRectF>& boxes, double left, double right) const {
    if (!boxes.empty() && left <= boxes.back().right() && right >= boxes.back().left()) {
        boxes.back().setRight(std::max(boxes.back().right(), right));
    } else if (left < right) {
        boxes.emplace_back(left, 0, right - left, m_lineHeight);
    }
}

void TextLayout::addBoxes(std::vector<QRectF>& boxes, const Piece& piece, SourceRange range) const {
    const SourceRange part = clamped(range, piece.range);
    if (part.isEmpty()) {
        return;
    }
    const auto add = [&](int lower, int upper) {
        for (const ShapedText::Box box : piece.shaped->boxes(lower, upper)) {
            addBox(boxes, piece.left + box.left, piece.left + box.right);
        }
    };
    const int lower = inside(piece, part.lower);
    const int upper = static_cast<int>(part.upper - piece.range.lower);
    if (piece.preeditAt < 0 || upper <= piece.preeditAt || lower >= piece.preeditAt + piece.preeditLength) {
        add(lower, inside(piece, part.upper - 1) + 1);
    } else {
        add(lower, piece.preeditAt);
        add(piece.preeditAt + piece.preeditLength, upper + piece.preeditLength);
    }
}

// Painting

void TextLayout::draw(QPainter& painter, std::size_t line, QPointF origin, double left, double right,
                      SourceRange selected, const QPalette& palette) {
    const SourceRange content = this->content(line);
    const std::vector<Piece> shown = pieces(content, left, right);
    const bool isOnSelection = selected.lower <= content.upper && selected.upper > content.lower;
    if (isOnSelection && !selected.isEmpty()) {
        std::vector<QRectF> boxes;
        for (const Piece& piece : shown) {
            addBoxes(boxes, piece, selected);
        }
        const bool goesOn = selected.upper > content.upper && m_text.lineRange(line).upper < m_text.size();
        if (goesOn && shown.back().range.upper == content.upper) {
            addBox(boxes, shown.back().right(), shown.back().right() + columnWidth() / 2);
        }
        for (const QRectF& box : boxes) {
            painter.fillRect(snapped(box.translated(origin), painter), palette.highlight());
        }
    }
    const QPen pen = painter.pen();
    painter.setPen(palette.color(QPalette::Text));
    for (const Piece& piece : shown) {
        drawPiece(painter, piece, origin, palette);
    }
    painter.setPen(pen);
}

void TextLayout::drawPiece(QPainter& painter, const Piece& piece, QPointF origin,
                           const QPalette& palette) const {
    const QPointF start = origin + QPointF(piece.left, 0);
    drawPreeditBackground(painter, piece, start);
    const double baseline = snapped(origin.y() + m_baseline, painter) - origin.y();
    piece.shaped->draw(painter, start, baseline, colors(piece));
    drawUnderlines(painter, piece, start, palette);
}

std::vector<QRgb> TextLayout::colors(const Piece& piece) const {
    std::vector<QRgb> colors;
    const auto paint = [&](int lower, int upper, QRgb color) {
        colors.resize(static_cast<std::size_t>(piece.shaped->size()));
        const int size = piece.shaped->size();
        std::fill(colors.begin() + std::min(lower, size), colors.begin() + std::min(upper, size), color);
    };
    const auto paintRange = [&](SourceRange range, QRgb color) {
        const SourceRange part = clamped(range, piece.range);
        if (!part.isEmpty()) {
            paint(inside(piece, part.lower), inside(piece, part.upper - 1) + 1, color);
        }
    };
    for (const AttributeRuns::Run& run : m_attributes.runs(piece.range)) {
        if (run.attributes.foreground.isValid()) {
            paintRange(run.range, run.attributes.foreground.rgba());
        }
    }
    if (piece.preeditAt >= 0) {
        paint(piece.preeditAt, piece.preeditAt + piece.preeditLength, 0);
        for (const QTextLayout::FormatRange& range : m_preedit.formats) {
            if (range.format.hasProperty(QTextFormat::ForegroundBrush)) {
                const int lower = piece.preeditAt + std::clamp(range.start, 0, piece.preeditLength);
                const int upper = std::min(lower + range.length, piece.preeditAt + piece.preeditLength);
                paint(lower, upper, range.format.foreground().color().rgba());
            }
        }
    }
    return colors;
}

void TextLayout::drawUnderlines(QPainter& painter, const Piece& piece, QPointF origin,
                                const QPalette& palette) const {
    const double thin = std::max(1.0, std::round(m_lineHeight / 20.0));
    for (const AttributeRuns::Run& run : m_attributes.runs(piece.range)) {
        if (run.attributes.underline == TemporaryAttributes::Underline::thick) {
            const QColor color = run.attributes.foreground.isValid() ? run.attributes.foreground
                                                                     : palette.color(QPalette::Text);
            underline(painter, piece, origin, inside(piece, run.range.lower),
                      inside(piece, run.range.upper - 1) + 1, 2 * thin, color);
        }
    }
    if (piece.preeditAt < 0) {
        return;
    }
    for (const QTextLayout::FormatRange& range : m_preedit.formats) {
        const auto style = range.format.underlineStyle();
        if (style == QTextCharFormat::NoUnderline && !range.format.fontUnderline()) {
            continue;
        }
        const QColor wanted = range.format.underlineColor();
        const int lower = piece.preeditAt + std::clamp(range.start, 0, piece.preeditLength);
        underline(painter, piece, origin, lower,
                  std::min(lower + range.length, piece.preeditAt + piece.preeditLength), thin,
                  wanted.isValid() ? wanted : palette.color(QPalette::Text));
    }
}

void TextLayout::drawPreeditBackground(QPainter& painter, const Piece& piece, QPointF origin) const {
    if (piece.preeditAt < 0) {
        return;
    }
    for (const QTextLayout::FormatRange& range : m_preedit.formats) {
        if (range.format.hasProperty(QTextFormat::BackgroundBrush)) {
            const int lower = piece.preeditAt + std::clamp(range.start, 0, piece.preeditLength);
            const int upper = std::min(lower + range.length, piece.preeditAt + piece.preeditLength);
            for (const ShapedText::Box box : piece.shaped->boxes(lower, upper)) {
                const QRectF area(origin.x() + box.left, origin.y(), box.right - box.left, m_lineHeight);
                painter.fillRect(snapped(area, painter), range.format.background());
            }
        }
    }
}

/// Just below the baseline, where no descender hides it.
void TextLayout::underline(QPainter& painter, const Piece& piece, QPointF origin, int lower, int upper,
                           double thickness, const QColor& color) const {
    const double top = std::min(m_baseline + 2, m_lineHeight - thickness);
    for (const ShapedText::Box box : piece.shaped->boxes(lower, upper)) {
        const QRectF line(origin.x() + box.left, origin.y() + top, box.right - box.left, thickness);
        painter.fillRect(snapped(line, painter), color);
    }
}
