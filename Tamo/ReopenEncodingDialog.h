#pragma once

#include "EncodingPreview.h"

#include <QDialog>

class EncodingList;
class QLabel;
class QPlainTextEdit;
class QPushButton;

/// Asks in which encoding a file is to be read, and shows how its first lines read.
class ReopenEncodingDialog : public QDialog {
    Q_OBJECT

public:
    /// `start` is that of the file `name`; `current` is chosen to begin with.
    ReopenEncodingDialog(const QString& name, FileStart start, const StringEncoding& current,
                         QWidget* parent = nullptr);

    /// Of an accepted dialog.
    StringEncoding encoding() const;

private:
    void showPreview();

    const FileStart m_start;
    EncodingList* m_list;
    QPlainTextEdit* m_preview;
    QLabel* m_problem;
    QPushButton* m_accept;
};
