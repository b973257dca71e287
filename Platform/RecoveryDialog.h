#pragma once

#include "RecoveryStore.h"

#include <QDialog>
#include <QStringList>

#include <vector>

class QTreeWidget;
class QPushButton;

/// Offers the texts that a run of the program left behind when it ended before its time. The user chooses
/// which of them to recover or discard, or to be asked again at the next start. Gone when none is left.
class RecoveryDialog : public QDialog {
    Q_OBJECT

public:
    explicit RecoveryDialog(const std::vector<RecoverableDocument>& documents, QWidget* parent = nullptr);

signals:
    void recoverRequested(const QStringList& ids); ///< The latest first.
    void discardRequested(const QStringList& ids);

private:
    QStringList takeSelected();
    void discard();

    QTreeWidget* m_list;
    QPushButton* m_recover;
    QPushButton* m_discard;
};
