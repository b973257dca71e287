#pragma once

#include <QColor>
#include <QFont>
#include <QGlyphRun>
#include <QTextLayout>

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

class QPainter;

/// A stretch of text of at most a few hundred units, shaped in one row from 0 to `width`, left to right, with
/// stand-ins for what would not be seen. Offsets count its units, coordinates are pixels.
///
/// A character as a reader sees it is one piece: no caret, box or colour ends inside it. Between two units of
/// different direction a caret stands where the text of the line goes on, so that no two carets share a
/// place. Of a stretch with more than 2048 units, which only characters made of hundreds of marks have, the
/// rest is not shown.
class ShapedText {
public:
    struct Box {
        double left;
        double right;
    };

    /// `tabWidth` is the distance of the tab stops.
    ShapedText(std::u16string_view units, const QFont& font, double tabWidth);

    int size() const { return m_size; }
    double width() const { return m_width; }

    /// Where a caret at `at` stands; at the start of a character when `at` is inside it.
    double x(int at) const;

    /// The caret position nearest to `x`.
    int offset(double x) const;

    /// What the characters from `lower` to `upper` take, left to right; boxes that touch are one.
    std::vector<Box> boxes(int lower, int upper) const;

    /// Paints the text, the top left of the line at `origin` and its characters on `baseline` below that.
    /// Each unit has its colour; the painter's pen draws those that are transparent, and all that have none.
    void draw(QPainter& painter, QPointF origin, double baseline, std::span<const QRgb> colors) const;

private:
    /// One character.
    struct Cell {
        int start;
        float left;
        float right;
        std::uint8_t level; ///< Odd from right to left.
    };
    struct Caret {
        float x;
        int at;
    };
    struct ColoredRun {
        QRgb color; ///< 0 for the pen.
        QGlyphRun glyphs;
    };

    void shape(const QString& text, const QFont& font, double tabWidth);
    void measureCells() const;
    std::vector<std::int32_t> visualOrder() const; ///< The cells from left to right.
    void spreadLigatures(std::span<const std::int32_t> order) const;
    void measureCarets() const;
    std::size_t cell(int holding) const;
    void drawStandIns(QPainter& painter, QPointF origin, double baseline) const;
    void color(std::span<const QRgb> colors) const;
    void colorGlyphByGlyph(const QGlyphRun& glyphs) const;
    void colorStretches() const;

    QTextLayout m_layout;
    std::vector<int> m_standIns; ///< Their offsets.
    int m_size = 0;
    double m_width = 0;
    double m_ascent = 0;
    bool m_isPlain = false; ///< Printable ASCII alone.

    // Found out when first asked for.
    mutable std::vector<Cell> m_cells;
    mutable std::vector<Caret> m_carets; ///< From left to right.
    mutable std::vector<QRgb> m_colors;
    mutable std::vector<ColoredRun> m_runs;
    mutable bool m_isColored = false;
};
