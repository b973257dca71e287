#pragma once

#include "AttributeRuns.h"
#include "CharacterAdvances.h"
#include "LineSegments.h"
#include "Rope.h"
#include "ShapedTexts.h"
#include "TemporaryAttributes.h"
#include "TextSelection.h"

#include <QColor>
#include <QFont>
#include <QPointF>
#include <QRectF>
#include <QTextLayout>

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

class QPainter;
class QPalette;

/// Lays out the lines of a text, each in one row, left to right, and never wraps. All work costs what is
/// asked for, whatever the size of the text or of a line: a line of more than 512 units is laid out in
/// segments of which only those between `left` and `right` are shaped; the others count an estimate, which
/// `buildMore` makes better and shaping exact. Where it was wrong, what `x` answers for the text behind it
/// moves when it is made exact.
///
/// Offsets count UTF-16 units of the text. Horizontal coordinates are logical pixels from the start of a
/// line, vertical ones 64-bit logical pixels from the top of the first line.
///
/// Tab stops are four columns apart and count from the start of the line; in a long line, beyond its first
/// segment, from the start of the segment. Directions are found out line by line, in a long line segment by
/// segment.
class TextLayout {
public:
    TextLayout();
    ~TextLayout();
    TextLayout(const TextLayout&) = delete;
    TextLayout& operator=(const TextLayout&) = delete;

    /// Forgets all layouts of another font.
    void setFont(const QFont& font);

    const Rope& text() const { return m_text; }

    /// The same text, stored elsewhere.
    void moveTo(const Rope& same);

    /// Another text, without attributes.
    void setText(const Rope& text);

    /// The text after a replacement: `edited` now holds what was put in, and the text is longer by
    /// `changeInLength`. Attributes move with the text around them.
    void edit(const Rope& text, SourceRange edited, std::int64_t changeInLength);

    int lineHeight() const { return m_lineHeight; }
    double baseline() const { return m_baseline; }             ///< From the top of a line.
    double columnWidth() const { return m_advances.column(); } ///< Of a digit.
    qint64 height() const { return qint64(m_text.lineCount()) * m_lineHeight; }

    /// The width of the widest line, as far as known; grows while lines are laid out.
    double width() const;

    /// Looks at some thousand units of a long line shown lately whose width is a guess so far, in well below
    /// a millisecond. Answers whether there is more to do; to be called while nothing else is to be done. May
    /// change `width` and what `x` answers.
    bool buildMore();

    /// Where a caret at `at` stands in its line; exact for a line once laid out there. At the place of the
    /// preedit, the caret in that.
    double x(Offset at);

    /// The caret position of `line` nearest to `x`; before the line's LF or CR LF.
    Offset offset(std::size_t line, double x);

    /// The units of `line` that may show between two horizontal coordinates: the whole of a line that is not
    /// long, otherwise whole segments, one more on each side.
    SourceRange stretch(std::size_t line, double left, double right);

    /// The boxes, left to right, that the units of `range` take in `line`, of the height of the line and with
    /// y counted from its top. A range that goes on behind the line takes half a column there.
    std::vector<QRectF> boxes(SourceRange range, std::size_t line);

    void setTemporaryAttributes(SourceRange range, const TemporaryAttributes& attributes);
    void removeTemporaryAttributes(SourceRange range);

    /// Text being composed by an input method, shown at `at` as if it stood there; empty for none. Formats
    /// count from its start; their colours and underlines count, fonts do not.
    struct Preedit {
        QString text;
        QList<QTextLayout::FormatRange> formats;
        int caret = 0;
    };
    void setPreedit(Offset at, Preedit preedit);

    /// Paints the units of `line` that show between two horizontal coordinates; `origin` is where the line's
    /// top left is. Behind what is selected lies the palette's highlight; its characters keep their colours.
    void draw(QPainter& painter, std::size_t line, QPointF origin, double left, double right,
              SourceRange selected, const QPalette& palette);

private:
    /// A line that is not long, or a segment, as it is shaped, the preedit in it if it stands there.
    struct Piece {
        SourceRange range;
        double left = 0;
        std::shared_ptr<const ShapedText> shaped;
        int preeditAt = -1; ///< In `shaped`; negative without.
        int preeditLength = 0;

        double right() const { return left + shaped->width(); }
    };
    struct LongLine {
        Offset start = 0;
        std::uint64_t lastUse = 0;
        bool isBuilt = false;
        LineSegments segments;
    };
    /// What a preedit in a long line pushes to the right.
    struct Push {
        Offset from = 0; ///< The segment with the preedit ends here.
        double left = 0;
        double extra = 0;
    };

    void useFont(const QFont& font);
    SourceRange content(std::size_t line) const;
    LongLine& longLine(SourceRange content);
    static bool isLong(SourceRange content);
    Piece shape(SourceRange range, double left, bool isLast);
    Piece shape(LongLine& longLine, const LineSegments::Segment& segment);
    Piece piece(SourceRange content, Offset holding);
    std::vector<Piece> pieces(SourceRange content, double left, double right);
    std::optional<Push> push(LongLine& longLine);
    void noteWidth(double width) { m_widest = std::max(m_widest, width); }

    int inside(const Piece& piece, Offset at) const;
    int insideCaret(const Piece& piece, Offset at) const;
    Offset outside(const Piece& piece, int inside) const;
    void addBoxes(std::vector<QRectF>& boxes, const Piece& piece, SourceRange range) const;
    void addBox(std::vector<QRectF>& boxes, double left, double right) const;

    void drawPiece(QPainter& painter, const Piece& piece, QPointF origin, const QPalette& palette) const;
    void drawUnderlines(QPainter& painter, const Piece& piece, QPointF origin, const QPalette& palette) const;
    void drawPreeditBackground(QPainter& painter, const Piece& piece, QPointF origin) const;
    void underline(QPainter& painter, const Piece& piece, QPointF origin, int lower, int upper,
                   double thickness, const QColor& color) const;
    std::vector<QRgb> colors(const Piece& piece) const;

    Rope m_text;
    QFont m_font;
    CharacterAdvances m_advances;
    ShapedTexts m_shapedTexts;
    std::vector<std::unique_ptr<LongLine>> m_longLines; ///< Those shown lately.
    std::uint64_t m_uses = 0;
    AttributeRuns m_attributes;
    Offset m_preeditAt = 0;
    Preedit m_preedit;
    int m_lineHeight = 1;
    double m_baseline = 1;
    double m_widest = 0; ///< Of the lines laid out so far.
};
