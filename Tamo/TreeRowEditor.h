#pragma once

#include <QLineEdit>

/// A field that stands in the place of a row's label while it is edited. Return and leaving the field accept
/// what was typed, Escape does not; either way `finished` tells once. Line breaks in the text stay.
class TreeRowEditor : public QLineEdit {
    Q_OBJECT

public:
    TreeRowEditor(const QString& text, const QFont& font, QWidget* parent);

    /// Ends the editing without accepting anything.
    void cancel() { finish(false); }

public slots:
    /// Ends the editing and accepts what was typed, as Return does. Commands and saving call it through
    /// `FieldDraft`.
    void commitDraft() { finish(true); }

signals:
    /// `isAccepted` only when the text is another one now.
    void finished(bool isAccepted);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void finish(bool isAccepted);

    const QString m_original;
    bool m_isFinished = false;
};
