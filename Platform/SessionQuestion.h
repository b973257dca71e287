#pragma once

#include <QObject>

class DocumentController;
class QSessionManager;

/// Asks about unsaved documents when the user logs out. Where the desktop does not let it ask, what is kept
/// for recovery is offered at the next start.
class SessionQuestion : public QObject {
    Q_OBJECT

public:
    explicit SessionQuestion(DocumentController& controller, QObject* parent = nullptr);

    /// Asks about each document with changes, and waits until those to be saved are; answers whether the
    /// session may end. The windows stay.
    bool ask();

private:
    void commitData(QSessionManager& manager);

    DocumentController& m_controller;
};
