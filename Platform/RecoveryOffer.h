#pragma once

#include "BackgroundTask.h"
#include "RecoveryStore.h"

#include <QObject>
#include <QPointer>
#include <QStringList>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

class DocumentController;
class RecoveryDialog;

/// At the start of the program, looks for texts that earlier runs left behind, and has the user choose what
/// becomes of them. The disk is read on workers.
class RecoveryOffer : public QObject {
    Q_OBJECT

public:
    RecoveryOffer(std::shared_ptr<RecoveryStore> store, DocumentController& controller,
                  QObject* parent = nullptr);
    ~RecoveryOffer() override;

    /// Looks for them; where there are any, a dialog comes up.
    void start();

    /// What is offered; null once the user has chosen.
    RecoveryDialog* dialog() const;

    /// Whether texts are being looked for, offered or read.
    bool isUnderWay() const;

private:
    struct Recovery {
        QString id;
        std::optional<RecoveredText> text;
        bool lacksMemory = false; ///< The text is still kept.
    };
    using Texts = std::vector<Recovery>;

    void show(const Recoverables& found);
    void recover(const QStringList& ids);
    static Recovery taken(RecoveryStore& from, const QString& id);
    void open(const Texts& texts);
    void tellLost(std::size_t count);
    void tellShortage(const QString& forWhat);
    void discard(const QStringList& ids) const;
    QWidget* window() const;

    const std::shared_ptr<RecoveryStore> m_store;
    DocumentController& m_controller;
    BackgroundTask<Recoverables> m_search;
    std::vector<std::unique_ptr<BackgroundTask<Texts>>> m_recoveries;
    QPointer<RecoveryDialog> m_dialog;
};
