#pragma once

#include <QAccessibleWidget>

#include "SourceRange.h"

#include <memory>

class Rope;
class TextView;

/// A text view as a screen reader sees it: by characters, words and lines, with caret and selection. It is
/// never told more than a bounded piece of the text, since what is asked for may be all of it.
class TextViewAccessible : public QAccessibleWidget,
                           public QAccessibleTextInterface,
                           public QAccessibleEditableTextInterface {
public:
    explicit TextViewAccessible(TextView& view);

    /// Has every text view that is made from now on looked at through this class. May be called often.
    static void install();

    /// Tells that `length` units of `now` stand in the place of `replaced`, which `before` had.
    static void announceEdit(TextView& view, const Rope& before, SourceRange replaced, Offset length,
                             const Rope& now);
    static void announceCaret(TextView& view);

    /// What `announceEdit` tells.
    static std::unique_ptr<QAccessibleEvent> editEvent(TextView& view, const Rope& before,
                                                       SourceRange replaced, Offset length, const Rope& now);

    void* interface_cast(QAccessible::InterfaceType type) override;
    QAccessible::State state() const override;
    QString text(QAccessible::Text kind) const override;

    // Text
    void selection(int index, int* startOffset, int* endOffset) const override;
    int selectionCount() const override;
    void addSelection(int startOffset, int endOffset) override;
    void removeSelection(int index) override;
    void setSelection(int index, int startOffset, int endOffset) override;
    int cursorPosition() const override;
    void setCursorPosition(int position) override;
    QString text(int startOffset, int endOffset) const override;
    QString textBeforeOffset(int offset, QAccessible::TextBoundaryType boundary, int* startOffset,
                             int* endOffset) const override;
    QString textAtOffset(int offset, QAccessible::TextBoundaryType boundary, int* startOffset,
                         int* endOffset) const override;
    QString textAfterOffset(int offset, QAccessible::TextBoundaryType boundary, int* startOffset,
                            int* endOffset) const override;
    int characterCount() const override;
    QRect characterRect(int offset) const override;
    int offsetAtPoint(const QPoint& point) const override;
    void scrollToSubstring(int startIndex, int endIndex) override;
    QString attributes(int offset, int* startOffset, int* endOffset) const override;

    // Editing
    void deleteText(int startOffset, int endOffset) override;
    void insertText(int offset, const QString& text) override;
    void replaceText(int startOffset, int endOffset, const QString& text) override;

private:
    TextView& view() const;
    Offset inside(int offset) const;
    SourceRange rangeInside(int start, int end) const;
    QString told(SourceRange range, int* startOffset, int* endOffset) const;
};
