#pragma once

#include "DocumentRecovery.h"

#include <QObject>
#include <QString>

#include <memory>
#include <optional>

class DocumentWindow;
class RecoveryStore;

/// Sees to it that the unsaved changes of a window's document are kept, from the moment it is opened, and no
/// longer than they are unsaved. A companion of the document.
class DocumentKeeper : public QObject {
    Q_OBJECT

public:
    /// `taken` is the id of the recovered text that the document now has, empty for none.
    DocumentKeeper(DocumentWindow& window, RecoveryStore& store, const QString& taken);
    ~DocumentKeeper() override;

private:
    RecoveryFacts facts() const;
    void followSave();
    void followVersion();
    void followHistory(bool isClean);
    void tellFailure(const QString& message);

    DocumentWindow& m_window;
    std::optional<FileIdentity> m_version; ///< That is kept with the text.
    const std::unique_ptr<DocumentRecovery> m_recovery;
};
