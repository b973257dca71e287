#pragma once

#include "LineLayouts.h"
#include "Rope.h"
#include "TextSelection.h"

#include <QColor>
#include <QFont>
#include <QPointF>
#include <QTextLayout>

#include <cstdint>
#include <string_view>
#include <vector>

class QPainter;
class QPalette;

/// How a part of a text looks beside its characters. Never part of the text, of its history, or of a file.
struct TemporaryAttributes {
    enum class Underline : std::uint8_t { none, thick };

    QColor foreground; ///< Invalid for the colour of the text.
    Underline underline = Underline::none;

    bool operator==(const TemporaryAttributes&) const = default;
};

/// Lays out the lines of a text, each in one row, left to right, and never wraps. All work costs what is
/// asked for, whatever the size of the text or of a line: a long line is laid out in segments of which only
/// those between `left` and `right` are shaped; the others count an estimate, made exact where it is free.
///
/// Offsets count UTF-16 units of the text. Horizontal coordinates are logical pixels from the start of a
/// line, vertical ones 64-bit logical pixels from the top of the first line.
class TextLayout {
public:
    TextLayout();
    ~TextLayout();

    /// Forgets all layouts of another font.
    void setFont(const QFont& font);

    const Rope& text() const { return m_text; }

    /// Another text, without attributes.
    void setText(const Rope& text);

    /// The text after a replacement: `edited` now holds what was put in, and the text is longer by
    /// `changeInLength`. Attributes move with the text around them.
    void edit(const Rope& text, SourceRange edited, std::int64_t changeInLength);

    int lineHeight() const { return m_lineHeight; }
    double baseline() const { return m_baseline; }       ///< From the top of a line.
    double columnWidth() const { return m_columnWidth; } ///< Of a digit.
    qint64 height() const { return qint64(m_text.lineCount()) * m_lineHeight; }

    /// The width of the widest line, as far as known; grows while lines are laid out.
    double width() const;

    /// Where a caret at `at` stands in its line; exact for a line once laid out there.
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
    /// count from its start.
    struct Preedit {
        QString text;
        QList<QTextLayout::FormatRange> formats;
        int caret = 0;
    };
    void setPreedit(Offset at, Preedit preedit);

    /// Paints the units of `line` that show between two horizontal coordinates; `origin` is where the line's
    /// top left is. What is selected is painted in the palette's highlight.
    void draw(QPainter& painter, std::size_t line, QPointF origin, double left, double right,
              SourceRange selected, const QPalette& palette);

    /// Makes what is estimated in long lines exact for a few more thousand units; to be called while idle, as
    /// long as it answers that there is more. May change `width` and what `x` answers.
    bool buildMore() { return false; }

private:
    struct Shown {
        SourceRange range;
        double left = 0;
        std::shared_ptr<const QTextLayout> layout;
    };
    struct Attributed {
        SourceRange range;
        TemporaryAttributes attributes;
    };

    Shown shown(std::size_t line, double left, double right);

    Rope m_text;
    LineLayouts m_layouts;
    std::vector<Attributed> m_attributes;
    Offset m_preeditAt = 0;
    Preedit m_preedit;
    int m_lineHeight = 1;
    double m_baseline = 1;
    double m_columnWidth = 1;
    double m_widest = 0;
};
