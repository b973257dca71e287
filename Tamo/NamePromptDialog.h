#pragma once

#include <QDialog>

class QLineEdit;

/// Asks for the name of an element.
class NamePromptDialog : public QDialog {
    Q_OBJECT

public:
    /// `purpose` stands above the field when it is not empty.
    NamePromptDialog(const QString& purpose, QWidget* parent);

    QString name() const;

private:
    QLineEdit* m_name;
};
