#pragma once

#include <QDialog>

#include <functional>

class CommitField;
class QLabel;

/// Asks for a text of several lines: Return accepts it, Shift-Return breaks the line.
class TextPromptDialog : public QDialog {
    Q_OBJECT

public:
    /// Why a text cannot be taken; nothing when it can. The dialog then stays open and says so.
    using Check = std::function<QString(const QString& text)>;

    TextPromptDialog(const QString& title, Check check, QWidget* parent);

    QString text() const;

public slots:
    void accept() override;

private:
    Check m_check;
    CommitField* m_field;
    QLabel* m_problem;
};
