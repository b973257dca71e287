#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;

/// Asks for the name of an element. A name that is no XML name keeps the dialog open: it then says so, and
/// what was typed stays.
class NamePromptDialog : public QDialog {
    Q_OBJECT

public:
    /// `purpose` stands above the field when it is not empty.
    NamePromptDialog(const QString& purpose, QWidget* parent);

    QString name() const;

public slots:
    void accept() override;

private:
    QLineEdit* m_name;
    QLabel* m_problem;
};
