#include "DocumentKeeper.h"

#include "DocumentWindow.h"
#include "FilePath.h"
#include "RecoveryStore.h"
#include "UndoManager.h"

DocumentKeeper::DocumentKeeper(DocumentWindow& window, RecoveryStore& store, const QString& taken)
    : m_window(window), m_version(window.version()),
      m_recovery(store.follow(window.document()->storage(), facts(), taken)) {
    Document& document = *window.document();
    connect(&document, &Document::textSelectionChanged, this,
            [this] { m_recovery->setSelection(m_window.document()->textSelection().range()); });
    connect(&document, &Document::recoveryFactsChanged, this, [this] { m_recovery->setFacts(facts()); });
    connect(&document.undoManager(), &UndoManager::cleanChanged, this, &DocumentKeeper::followHistory);
    connect(&window, &DocumentWindow::saved, this, &DocumentKeeper::followSave);
    connect(&window, &DocumentWindow::versionChanged, this, &DocumentKeeper::followVersion);
    connect(&window, &DocumentWindow::changesGivenUp, this, [this] { m_recovery->forget(); });
    connect(&window, &DocumentWindow::aboutToClose, this, [this] { m_recovery->forget(); });
    connect(&store, &RecoveryStore::keepingFailed, this, &DocumentKeeper::tellFailure);
}

DocumentKeeper::~DocumentKeeper() = default;

RecoveryFacts DocumentKeeper::facts() const {
    RecoveryFacts facts = m_window.document()->recoveryFacts();
    facts.origin = FilePath::bytes(m_window.path()).toStdString();
    facts.version = m_window.version();
    return facts;
}

void DocumentKeeper::followSave() {
    if (m_window.document()->undoManager().isClean()) {
        m_recovery->forget();
    }
    m_version = m_window.version();
    m_recovery->setFacts(facts());
}

/// The text is kept anew with other facts, during which a busy disk delays what is typed. A hash is not worth
/// that.
void DocumentKeeper::followVersion() {
    const auto version = m_window.version();
    if (!version || !m_version || !version->isUntouched(*m_version)) {
        m_version = version;
        m_recovery->setFacts(facts());
    }
}

/// Back at what the file has there is nothing to keep. While it is being saved nobody knows that yet.
void DocumentKeeper::followHistory(bool isClean) {
    if (isClean && !m_window.isSaving()) {
        m_recovery->forget();
    }
}

void DocumentKeeper::tellFailure(const QString& message) { m_window.addNotice(message); }
