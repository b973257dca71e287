#pragma once

#include "AttributeRuns.h"
#include "CaretBlinker.h"
#include "Rope.h"
#include "ScrollPosition.h"
#include "TextHistory.h"
#include "TextLayout.h"
#include "TextSelection.h"
#include "TextViewDelegate.h"
#include "WheelScroll.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QColor>
#include <QPointer>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

class CompletionPopup;
class QHelpEvent;
class QMimeData;
class TextViewKeys;
class TextViewMouse;
class TextViewPainter;

/// Shows and edits the text of a storage, in lines that never wrap. Knows nothing of what the text is about:
/// that is its delegate's business.
///
/// Painting, keys and the mouse cost what is visible, whatever the size of the text or of a line. Offsets
/// count UTF-16 units of the text; rectangles are in logical pixels of the viewport.
class TextView : public QAbstractScrollArea {
    Q_OBJECT

public:
    explicit TextView(QWidget* parent = nullptr);
    ~TextView() override;

    /// Shows the text that `history` edits, the caret at its start; null for none. Not owned; outlives the
    /// view or is taken away first.
    void setHistory(TextHistory* history);
    TextHistory* history() const { return m_history; }
    const Rope& text() const { return m_layout.text(); }

    /// Not owned; outlives the view or is taken away first.
    void setDelegate(TextViewDelegate* delegate) { m_delegate = delegate; }

    // Selection

    /// What is selected; empty at the caret when nothing is.
    SourceRange selection() const { return m_selection.range(); }
    TextSelection directedSelection() const { return m_selection; }
    Offset caret() const { return m_selection.caret; }

    /// Selects `range`, or the part of it that the text has, the caret at its end. Does not scroll.
    void select(SourceRange range);
    void select(TextSelection selection);

    /// Scrolls as little as needed to have `range` in view, its start if it does not fit; to the middle when
    /// none of it was near.
    void scrollToVisible(SourceRange range);

    // Editing, as the user does: the delegate is asked, the selection follows.

    /// Replaces the selection with what is typed.
    void insertText(std::u16string_view units);

    /// Replaces `range` as one undo step of that name, the caret after it.
    void replace(SourceRange range, std::u16string_view units, const QString& actionName);

    /// Whether an input method is composing.
    bool hasMarkedText() const;

public slots:
    void undo();
    void redo();
    void cut();
    void copy() const;
    void paste();
    void selectAll();
    void eraseSelection();

    /// Offers the delegate's completions of the word before the caret.
    void complete();

public:
    // Looks

    void setTemporaryAttributes(SourceRange range, const TemporaryAttributes& attributes);
    void removeTemporaryAttributes(SourceRange range);

    /// Gives the units of `range` the attributes of `runs`, which ascend inside it, and no others; quicker
    /// than one by one.
    void setTemporaryAttributes(SourceRange range, std::span<const AttributeRuns::Run> runs);

    /// A wavy line under a part of the text.
    struct Underline {
        SourceRange range;
        QColor color;
    };
    /// Marks of a part of the text, asked whenever that is painted.
    using Underlines = std::function<std::vector<Underline>(SourceRange)>;
    using Highlights = std::function<std::vector<SourceRange>(SourceRange)>;
    void setUnderlines(Underlines underlines);
    void setHighlights(Highlights highlights); ///< Such as the matches of a search.

    /// The text that shows, in order: whole lines, neighbours in one range; of a line longer than
    /// `longestWhole` units only the segments that show and one more on each side, in a range of its own.
    std::vector<SourceRange> visibleStretches(Offset longestWhole = 32'768);

    // Geometry

    std::size_t firstVisibleLine() const;
    std::size_t lastVisibleLine() const;
    QRectF lineRect(std::size_t line) const; ///< As wide as the viewport.
    QRectF caretRect() const;
    QRectF caretRect(Offset at) const;
    Offset offset(QPointF at) const; ///< The caret position nearest to a point.
    int lineHeight() const;
    double baseline() const; ///< From the top of a line.

    /// A widget at the left of the text, as wide as its size hint, which does not scroll. Owned by the view.
    void setRuler(QWidget* ruler);
    /// Gives the ruler the width that it hints at now.
    void retile();
    /// What a ruler tells of presses beside the text.
    TextViewMouse& mouse() { return *m_mouse; }

signals:
    void selectionChanged();
    /// Other text shows: it was scrolled, resized or edited, or looks changed size.
    void visibleTextChanged();
    /// The user dropped files; what becomes of them is not for a text to say.
    void filesDropped(const QList<QUrl>& files);

public:
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
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
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

    /// Has the user carry text with the mouse until it is dropped somewhere; answers what the other side did
    /// with it.
    virtual Qt::DropAction carry(QMimeData* text);

private:
    friend TextViewKeys;
    friend TextViewMouse;
    friend TextViewPainter;

    /// What the caret does to the other end of the selection when it moves.
    enum class Anchor : std::uint8_t { moves, stays };

    // Following the text
    void followEdit(SourceRange edited, std::int64_t changeInLength);
    void finishBatch();
    void notePlace(SourceRange replaced);
    void restorePlace();
    void restoreSelection(TextSelection selection);

    // The selection
    void setSelection(TextSelection selection);
    void announceSelection();
    void moveTo(Offset caret, Anchor anchor);
    void moveByLines(std::int64_t lines, Anchor anchor);
    void showCaret() { scrollToVisible(SourceRange::empty(caret())); }

    // Editing
    bool mayChange(SourceRange range, std::u16string_view units) const;
    void type(SourceRange range, std::u16string_view units);
    void apply(std::span<const TextEdit> edits, TextSelection after, const QString& actionName);
    void erase(Offset to);

    // The mouse
    bool isOnSelection(QPointF position) const;
    void ownPrimarySelection() const;
    bool showToolTip(const QHelpEvent& event);

    // Completion
    void offerCompletions();
    void acceptCompletion(const QString& word);

    // Geometry
    double left() const { return static_cast<double>(m_horizontal.value()) - inset.x(); }
    double right() const { return left() + viewport()->width(); }
    QPointF origin(std::size_t line) const;
    std::size_t line(double atY) const;
    double top(std::size_t line) const { return origin(line).y(); }
    void updateFont();
    void updateExtents();
    void scrollTo(qint64 left, qint64 top);
    void showHorizontally(SourceRange range);
    void updateLines(std::size_t first, std::size_t last);
    void updateCaret();
    void visibleTextMoved();
    void layOutMore();

    static constexpr QPoint inset{4, 6}; ///< Around the text.

    QPointer<TextHistory> m_history;
    TextViewDelegate* m_delegate = nullptr;
    mutable TextLayout m_layout;
    ScrollPosition m_vertical;
    ScrollPosition m_horizontal;
    Underlines m_underlines;
    Highlights m_highlights;
    QPointer<QWidget> m_ruler;

    TextSelection m_selection;
    TextSelection m_announcedSelection;
    std::optional<TextSelection> m_selectionAfterEdit; ///< Of an edit that the view itself makes.
    bool m_showsCaretAfterEdit = false;
    std::optional<qint64> m_caretTopBeforeEdit; ///< In the view, while all around it is replaced.
    bool m_isInBatch = false;
    double m_wantedX = -1; ///< Where a caret that moves up and down wants to be; negative when unknown.
    bool m_hasMarkedText = false;

    CaretBlinker m_blinker;
    WheelScroll m_wheel;
    std::unique_ptr<TextViewMouse> m_mouse;
    QBasicTimer m_idle; ///< Runs while the layout has something to do that can wait.
    int m_caretWidth = 2;
    CompletionPopup* m_completions = nullptr; ///< A child; made when first needed.
};
