#pragma once

#include "LineLayouts.h"
#include "Rope.h"
#include "ScrollPosition.h"
#include "TextEdit.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QColor>
#include <QElapsedTimer>

#include <functional>
#include <vector>

/// Shows a text in lines that never wrap, with their numbers in a margin, and lets the user select, type and
/// erase. It changes nothing itself: it asks for edits, and shows the text it is given next.
///
/// Painting and keys cost what is visible, whatever the size of the text or of a line. Lines of more than
/// 2048 units are laid out around the visible columns only; those to their left count as wide as a digit.
class TextView : public QAbstractScrollArea {
    Q_OBJECT

public:
    /// A wavy line under a part of the text.
    struct Underline {
        SourceRange range;
        QColor color;
    };
    /// The underlines of a part of the text; asked whenever that is painted.
    using Underlines = std::function<std::vector<Underline>(SourceRange)>;

    explicit TextView(QWidget* parent = nullptr);
    ~TextView() override;

    const Rope& text() const { return m_text; }

    /// Shows another text, the caret at its start.
    void setText(const Rope& text);

    /// Shows `text`, an edited version of the one before, with the caret at `caret` and in view.
    void changeText(const Rope& text, Offset caret);

    void setUnderlines(Underlines underlines);

    /// What the Tab key inserts; a tab at first.
    void setIndentation(const QString& unit) { m_indentation = unit; }

    /// What is selected; empty at the caret when nothing is.
    SourceRange selection() const;
    Offset caret() const { return m_caret; }

    /// Selects `range`, or the part of it that the text has, the caret at its end.
    void select(SourceRange range);

    /// Selects `range` and scrolls its start into view, to the middle when it was not visible.
    void reveal(SourceRange range);

    void cut();
    void copy() const;
    void paste();
    void selectAll() { select(m_text.fullRange()); }

    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

signals:
    /// The user wants this. Whoever carries it out calls `changeText`.
    void editRequested(const TextEdit& edit);
    void selectionChanged();

protected:
    bool event(QEvent* event) override;
    bool focusNextPrevChild(bool) override { return false; }
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    /// A line, or the stretch of a long line around the visible columns, as it is laid out.
    struct Stretch {
        SourceRange range;
        double left = 0; ///< Pixels from the start of the line.
        std::shared_ptr<const QTextLayout> layout;
    };

    enum class Anchor : std::uint8_t { moves, stays };

    Stretch stretch(std::size_t line);
    double x(Offset at, std::size_t line);
    Offset offset(std::size_t line, double atX);
    Offset offset(QPointF at);
    QRect caretRect();
    int marginWidth() const;
    QPointF textOrigin(std::size_t line) const;
    std::size_t lineAt(qint64 y) const;

    void paintLine(QPainter& painter, std::size_t line);
    void paintUnderlines(QPainter& painter, const Stretch& shown, QPointF origin);
    void paintNumber(QPainter& painter, std::size_t line) const;
    void paintPreedit(QPainter& painter);

    void replaceSelection(std::u16string_view units);
    void erase(Offset to);
    bool handleMove(const QKeyEvent& event);
    bool handleEdit(const QKeyEvent& event);
    void moveTo(Offset caret, Anchor anchor);
    void moveByLines(std::int64_t lines, Anchor anchor);
    void setSelection(Offset anchor, Offset caret);
    void dragTo(QPointF position);
    void showCaret();
    void showCaretHorizontally();
    void scrollTo(qint64 left, qint64 top);
    void updateFont();
    void updateExtents();
    void restartBlinking();

    Rope m_text;
    LineLayouts m_layouts;
    ScrollPosition m_vertical;
    ScrollPosition m_horizontal;
    Underlines m_underlines;
    QString m_indentation = QStringLiteral("\t");
    QString m_preedit;

    Offset m_anchor = 0;
    Offset m_caret = 0;
    double m_wantedX = -1; ///< Where a caret that moves up and down wants to be; negative when unknown.

    int m_lineHeight = 1;
    double m_baseline = 1; ///< From the top of a line.
    double m_digitWidth = 1;
    double m_widest = 0; ///< Of the lines laid out so far.
    bool m_caretIsOn = true;
    bool m_isDragging = false;
    QPointF m_dragPosition;
    QElapsedTimer m_sinceDoubleClick;
    QBasicTimer m_blinking;
    QBasicTimer m_dragScrolling;
};
