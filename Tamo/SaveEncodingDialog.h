#pragma once

#include "EncodingChoice.h"

#include <QDialog>

#include <string>
#include <string_view>

class EncodingList;
class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;

/// Asks how a document is to be written from now on: in which encoding, with which line ends, with or without
/// a byte-order mark. Says what becomes of the XML declaration.
class SaveEncodingDialog : public QDialog {
    Q_OBJECT

public:
    /// `start` is that of the text, `lineEnding` the one of its first line.
    SaveEncodingDialog(const EncodingChoice& current, std::u16string start, std::u16string_view lineEnding,
                       QWidget* parent = nullptr);

    // Of an accepted dialog

    EncodingChoice choice() const;
    /// "\n" or "\r\n"; empty where the line ends are to stay as they are.
    std::u16string lineEnding() const;

private:
    void followEncoding();
    void showDeclaration();

    const std::u16string m_start;
    EncodingList* m_list;
    QComboBox* m_lineEndings;
    QCheckBox* m_mark;
    QLabel* m_declaration;
    QPushButton* m_accept;
};
