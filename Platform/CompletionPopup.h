#pragma once

#include <QListView>
#include <QStringListModel>

/// A list of words to choose from, under the caret of a view that keeps the keyboard: keys reach the list
/// through `handleKey`.
class CompletionPopup : public QListView {
    Q_OBJECT

public:
    explicit CompletionPopup(QWidget* parent);

    /// Shows the first thousand of `words` under `caret`, or above it where there is no room, both in global
    /// coordinates. The first one is chosen. Hides for no words.
    void offer(const QStringList& words, const QRect& caret);

    /// What the list does with a key: the arrows and pages walk, Return and Tab choose, Escape hides. Answers
    /// whether the key meant anything; it does not while the list is hidden.
    bool handleKey(const QKeyEvent& event);

signals:
    void chosen(const QString& word);

private:
    void choose(const QModelIndex& index);
    void walk(int rows);
    QSize wantedSize() const;

    QStringListModel m_words;
};
