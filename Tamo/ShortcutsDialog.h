#pragma once

#include "KeyTable.h"

#include <QDialog>

/// The page of shortcuts: a list in sections, each line a command and its keys.
class ShortcutsDialog : public QDialog {
    Q_OBJECT

public:
    ShortcutsDialog(const QList<KeySection>& sections, QWidget* parent);
};
