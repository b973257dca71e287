#pragma once

#include <QString>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <optional>

class QKeyEvent;
class QLabel;
class QLineEdit;
class QPlainTextEdit;

/// A field for one value of a document. What the user writes is a draft, and becomes the value only with
/// Return, or when the field loses the focus and the draft differs. Escape gives the draft up.
///
/// The draft follows the value while the field has no focus. A value that the draft shows already, as after a
/// commit, moves no caret and leaves the field its steps of undo. A value of more than 65536 units is shown by its
/// start only, and cannot be edited here.
class CommitField : public QWidget {
    Q_OBJECT

public:
    enum class Axis : std::uint8_t {
        horizontal, ///< One line.
        vertical,   ///< Grows with its lines, wrapped ones too, up to a bound; Shift-Return breaks the line.
    };

    /// Takes over a draft. Answers whether it was accepted: otherwise the field shows its value again.
    using Commit = std::function<bool(const QString& draft)>;

    /// `title` stands in the empty field, and names it where it is read aloud.
    CommitField(const QString& title, Axis axis, QWidget* parent = nullptr);

    QString value() const { return m_value; }
    void setValue(const QString& value);
    void setCommit(Commit commit) { m_commit = std::move(commit); }

    QString draft() const;
    void setDraft(const QString& draft);
    bool isFocused() const;

    /// Shows the value again, and forgets the field's steps of undo.
    void discardDraft();

    /// What has the focus and takes the keys.
    QWidget* editor() const;

    void setFont(const QFont& font);
    void selectAll();

public slots:
    /// Commits the draft if it differs from the value and was not committed yet. Commands and saving call it
    /// through `FieldDraft`.
    void commitDraft();

signals:
    void submitted(); ///< With Return; committed or refused.
    void focusLost();
    void cancelled();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int caret() const;
    void setCaret(int caret);
    void showValue();
    void commit();
    void leave(Qt::FocusReason reason);
    bool handleKey(const QKeyEvent& key);
    void breakLine();
    double shownHeight() const;
    void fitHeight();

    QLineEdit* m_line = nullptr; ///< One of the two exists.
    QPlainTextEdit* m_text = nullptr;
    QLabel* m_note = nullptr; ///< Below several lines: why they cannot be edited.
    QString m_value;
    std::optional<QString> m_committed; ///< The draft that was accepted last, until the value changes.
    QString m_shown;     ///< The draft that shows the value: line breaks may differ from it.
    Commit m_commit;
    bool m_isTooLong = false;
};
