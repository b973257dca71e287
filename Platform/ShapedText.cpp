#include "ShapedText.h"

#include "DisplayText.h"
#include "GraphemeBreaker.h"
#include "StandIns.h"
#include "StringUnits.h"

#include <QPainter>

#include <unicode/ubidi.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

constexpr std::size_t longestShown = 2048;
constexpr float narrowest = 0.5; ///< A character with less room is part of one next to it.

bool isPrintableASCII(char16_t unit) { return unit >= u' ' && unit <= u'~'; }

/// Tabs, and the white space before them, stand in the direction of the line.
void resetBeforeTabs(const QString& text, std::vector<std::uint8_t>& levels) {
    bool isBeforeTab = false;
    for (std::size_t at = levels.size(); at-- > 0;) {
        const QChar unit = text[static_cast<qsizetype>(at)];
        isBeforeTab = unit == u'\t' || (isBeforeTab && unit.direction() == QChar::DirWS);
        if (isBeforeTab) {
            levels[at] = 0;
        }
    }
}

/// The bidirectional levels of the units of `text` in a line from left to right; none when all are 0.
std::vector<std::uint8_t> levels(const QString& text) {
    const bool mayTurn = std::ranges::any_of(text, [](QChar unit) { return unit.unicode() >= 0x590; });
    if (!mayTurn) {
        return {};
    }
    // A tab is a neutral like any other until the directions are known, for the layout too.
    QString spaced = text;
    spaced.replace(u'\t', u' ');
    const std::unique_ptr<UBiDi, decltype(&ubidi_close)> bidi(ubidi_open(), &ubidi_close);
    UErrorCode error = U_ZERO_ERROR;
    const auto length = static_cast<std::int32_t>(spaced.size());
    ubidi_setPara(bidi.get(), reinterpret_cast<const UChar*>(spaced.utf16()), length, UBIDI_LTR, nullptr,
                  &error);
    if (U_FAILURE(error) || ubidi_getDirection(bidi.get()) == UBIDI_LTR) {
        return {};
    }
    const UBiDiLevel* const found = ubidi_getLevels(bidi.get(), &error);
    if (U_FAILURE(error)) {
        return {};
    }
    std::vector<std::uint8_t> levels(found, found + length);
    resetBeforeTabs(text, levels);
    return levels;
}

/// Puts `box` at the end of `boxes`, or makes the last one wider when the two touch.
void append(std::vector<ShapedText::Box>& boxes, ShapedText::Box box) {
    if (!boxes.empty() && box.left <= boxes.back().right) {
        boxes.back().right = std::max(boxes.back().right, box.right);
    } else if (box.left < box.right) {
        boxes.push_back(box);
    }
}

} // namespace

ShapedText::ShapedText(std::u16string_view units, const QFont& font, double tabWidth)
    : m_size(static_cast<int>(std::min(units.size(), longestShown))),
      m_isPlain(std::ranges::all_of(units, isPrintableASCII)) {
    const std::u16string_view shown = units.substr(0, longestShown);
    QString text = displayText(shown);
    if (!m_isPlain) {
        m_standIns = StandIns::blankOut(text, shown);
    }
    shape(text, font, tabWidth);
}

void ShapedText::shape(const QString& text, const QFont& font, double tabWidth) {
    QTextOption option;
    option.setTextDirection(Qt::LeftToRight);
    option.setWrapMode(QTextOption::NoWrap);
    option.setTabStopDistance(tabWidth);
    option.setFlags(QTextOption::IncludeTrailingSpaces);
    QFont chosen = font;
    if (m_isPlain) {
        chosen.setStyleStrategy(
            static_cast<QFont::StyleStrategy>(font.styleStrategy() | QFont::PreferNoShaping));
    }
    m_layout.setFont(chosen);
    m_layout.setText(text);
    m_layout.setTextOption(option);
    m_layout.setFormats(StandIns::formats(m_standIns, chosen));
    m_layout.setCacheEnabled(true);
    m_layout.beginLayout();
    const QTextLine line = m_layout.createLine();
    m_layout.endLayout();
    m_width = line.horizontalAdvance();
    m_ascent = line.ascent();
}

double ShapedText::x(int at) const {
    measureCells();
    if (m_cells.empty() || at <= 0) {
        return 0;
    }
    const bool isEnd = at >= m_size;
    const std::size_t next = isEnd ? m_cells.size() : cell(at);
    if (next == 0) {
        return 0;
    }
    const Cell& before = m_cells[next - 1];
    const std::uint8_t nextLevel = isEnd ? 0 : m_cells[next].level;
    if (before.level <= nextLevel) {
        return before.level % 2 == 0 ? before.right : before.left;
    }
    if (isEnd) {
        return m_width;
    }
    return nextLevel % 2 == 0 ? m_cells[next].left : m_cells[next].right;
}

int ShapedText::offset(double x) const {
    measureCarets();
    const auto right = std::ranges::lower_bound(m_carets, x, {}, [](const Caret& caret) { return caret.x; });
    if (right == m_carets.end()) {
        return m_carets.back().at;
    }
    if (right == m_carets.begin()) {
        return right->at;
    }
    const auto left = right - 1;
    return x - left->x < right->x - x ? left->at : right->at;
}

std::vector<ShapedText::Box> ShapedText::boxes(int lower, int upper) const {
    measureCells();
    std::vector<Box> parts;
    if (m_cells.empty() || lower >= std::min(upper, m_size)) {
        return parts;
    }
    for (std::size_t at = cell(lower); at < m_cells.size() && m_cells[at].start < upper; ++at) {
        parts.push_back({m_cells[at].left, m_cells[at].right});
    }
    std::ranges::sort(parts, {}, &Box::left);
    std::vector<Box> boxes;
    for (const Box& part : parts) {
        append(boxes, part);
    }
    return boxes;
}

void ShapedText::measureCells() const {
    if (!m_cells.empty() || m_size == 0) {
        return;
    }
    const QString text = m_layout.text();
    const std::u16string_view units = unitsOf(text);
    const std::vector<std::uint8_t> levels = ::levels(text);
    for (const std::u16string_view character : GraphemeBreaker::Characters(units)) {
        const auto start = static_cast<int>(character.data() - units.data());
        m_cells.push_back({start, 0, 0, levels.empty() ? std::uint8_t(0) : levels[std::size_t(start)]});
    }
    const std::vector<std::int32_t> order = visualOrder();
    const QTextLine line = m_layout.lineAt(0);
    float left = 0;
    float right = 0; // Of the cell before.
    for (std::size_t place = 0; place < order.size(); ++place) {
        const auto at = static_cast<std::size_t>(order[place]);
        Cell& cell = m_cells[at];
        const int end = at + 1 < m_cells.size() ? m_cells[at + 1].start : m_size;
        const auto leading = static_cast<float>(line.cursorToX(cell.start, QTextLine::Leading));
        const auto trailing = static_cast<float>(line.cursorToX(end - 1, QTextLine::Trailing));
        // Where a turned stretch starts, both edges are answered for the stretch before it.
        const bool isTurned = cell.level % 2 == 1;
        const bool isKnown = !isTurned || leading > trailing;
        left = std::max(left, isKnown ? std::min(leading, trailing) : right);
        right = isKnown ? std::max({left, leading, trailing}) : left;
        cell.left = left;
        if (place > 0) {
            m_cells[static_cast<std::size_t>(order[place - 1])].right = left;
        }
    }
    m_cells[static_cast<std::size_t>(order.back())].right = std::max(left, static_cast<float>(m_width));
    spreadLigatures(order);
}

void ShapedText::spreadLigatures(std::span<const std::int32_t> order) const {
    const auto cellAt = [&](std::size_t place) -> Cell& {
        return m_cells[static_cast<std::size_t>(order[place])];
    };
    const auto isNarrow = [&](std::size_t place) {
        return place < order.size() && cellAt(place).right - cellAt(place).left < narrowest;
    };
    for (std::size_t first = 0, end = 0; first < order.size(); first = end) {
        // A wide character and the narrow ones behind it; narrow ones at the start go with the first wide
        // one.
        end = first + 1;
        while (first == 0 && end < order.size() && isNarrow(end - 1)) {
            ++end;
        }
        while (isNarrow(end)) {
            ++end;
        }
        if (end - first > 1) {
            const float left = cellAt(first).left;
            const float share = (cellAt(end - 1).right - left) / static_cast<float>(end - first);
            for (std::size_t place = first; place < end; ++place) {
                cellAt(place).left = left + static_cast<float>(place - first) * share;
                cellAt(place).right = left + static_cast<float>(place - first + 1) * share;
            }
        }
    }
}

std::vector<std::int32_t> ShapedText::visualOrder() const {
    std::vector<UBiDiLevel> levels;
    for (const Cell& cell : m_cells) {
        levels.push_back(cell.level);
    }
    std::vector<std::int32_t> order(levels.size());
    ubidi_reorderVisual(levels.data(), static_cast<std::int32_t>(levels.size()), order.data());
    return order;
}

void ShapedText::measureCarets() const {
    if (!m_carets.empty()) {
        return;
    }
    measureCells();
    for (const Cell& cell : m_cells) {
        m_carets.push_back({static_cast<float>(x(cell.start)), cell.start});
    }
    m_carets.push_back({static_cast<float>(x(m_size)), m_size});
    std::ranges::stable_sort(m_carets, {}, &Caret::x);
}

std::size_t ShapedText::cell(int holding) const {
    const auto after = std::ranges::upper_bound(m_cells, holding, {}, &Cell::start);
    return static_cast<std::size_t>(after - m_cells.begin()) - 1;
}

void ShapedText::draw(QPainter& painter, QPointF origin, double baseline,
                      std::span<const QRgb> colors) const {
    if (m_size == 0) {
        return;
    }
    color(colors.subspan(0, std::min<std::size_t>(colors.size(), static_cast<std::size_t>(m_size))));
    const QPen pen = painter.pen();
    const QPointF at = origin + QPointF(0, baseline - m_ascent);
    for (const ColoredRun& run : m_runs) {
        painter.setPen(run.color == 0 ? pen : QPen(QColor::fromRgba(run.color)));
        painter.drawGlyphRun(at, run.glyphs);
    }
    painter.setPen(pen);
    drawStandIns(painter, origin, baseline);
}

void ShapedText::drawStandIns(QPainter& painter, QPointF origin, double baseline) const {
    constexpr double height = 0.7; // Of the ascent, about that of a capital.
    if (m_standIns.empty()) {
        return;
    }
    measureCells();
    const QPen pen = painter.pen();
    for (const int at : m_standIns) {
        const Cell& place = m_cells[cell(at)];
        const QRgb color =
            static_cast<std::size_t>(at) < m_colors.size() ? m_colors[static_cast<std::size_t>(at)] : 0;
        painter.setPen(color == 0 ? pen : QPen(QColor::fromRgba(color)));
        StandIns::draw(painter, QRectF(origin + QPointF(place.left, baseline - height * m_ascent),
                                       origin + QPointF(place.right, baseline)));
    }
    painter.setPen(pen);
}

void ShapedText::color(std::span<const QRgb> colors) const {
    if (m_isColored && std::ranges::equal(colors, m_colors)) {
        return;
    }
    m_isColored = true;
    m_colors.assign(colors.begin(), colors.end());
    m_runs.clear();
    const QList<QGlyphRun> all = m_layout.glyphRuns();
    if (std::ranges::all_of(m_colors, [](QRgb color) { return color == 0; })) {
        for (const QGlyphRun& glyphs : all) {
            m_runs.push_back({0, glyphs});
        }
    } else if (m_isPlain && all.size() == 1 && all.front().glyphIndexes().size() == m_size) {
        colorGlyphByGlyph(all.front());
    } else {
        colorStretches();
    }
}

void ShapedText::colorGlyphByGlyph(const QGlyphRun& glyphs) const {
    const QList<quint32> indexes = glyphs.glyphIndexes();
    const QList<QPointF> positions = glyphs.positions();
    struct Share {
        QRgb color;
        QList<quint32> indexes;
        QList<QPointF> positions;
    };
    std::vector<Share> shares;
    Share* share = nullptr;
    for (qsizetype at = 0; at < indexes.size(); ++at) {
        const QRgb color =
            static_cast<std::size_t>(at) < m_colors.size() ? m_colors[static_cast<std::size_t>(at)] : 0;
        if (share == nullptr || share->color != color) {
            const auto known = std::ranges::find(shares, color, &Share::color);
            share = known != shares.end() ? &*known : &shares.emplace_back(color);
        }
        share->indexes.append(indexes[at]);
        share->positions.append(positions[at]);
    }
    for (const Share& each : shares) {
        QGlyphRun run = glyphs;
        run.setGlyphIndexes(each.indexes);
        run.setPositions(each.positions);
        m_runs.push_back({each.color, run});
    }
}

void ShapedText::colorStretches() const {
    measureCells();
    const auto colorOf = [&](std::size_t cell) {
        const auto start = static_cast<std::size_t>(m_cells[cell].start);
        return start < m_colors.size() ? m_colors[start] : 0;
    };
    for (std::size_t first = 0, next = 0; first < m_cells.size(); first = next) {
        while (next < m_cells.size() && colorOf(next) == colorOf(first)) {
            ++next;
        }
        const int end = next < m_cells.size() ? m_cells[next].start : m_size;
        for (const QGlyphRun& glyphs : m_layout.glyphRuns(m_cells[first].start, end - m_cells[first].start)) {
            m_runs.push_back({colorOf(first), glyphs});
        }
    }
}
