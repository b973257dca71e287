#include "DocumentRecovery.h"

#include <QDateTime>

#include <utility>

DocumentRecovery::DocumentRecovery(TextStorage& storage, std::unique_ptr<RecoveryWriter> writer)
    : m_storage(storage), m_writer(std::move(writer)) {
    connect(&storage, &TextStorage::editProcessed, this, &DocumentRecovery::noteEdit);
    connect(&storage, &TextStorage::editingEnded, this, &DocumentRecovery::sendEdits);
}

void DocumentRecovery::setFacts(const RecoveryFacts& facts) {
    m_writer->setFacts(facts, m_storage.text(), m_moment);
}

void DocumentRecovery::setSelection(SourceRange selection) {
    m_moment.selection = selection;
    m_writer->setSelection(selection);
}

void DocumentRecovery::forget() { m_writer->forget(); }

void DocumentRecovery::noteEdit(SourceRange editedRange, std::int64_t changeInLength) {
    const SourceRange replaced(editedRange.lower, editedRange.upper - changeInLength);
    m_edits.push_back({replaced, m_storage.text().part(editedRange)});
    ++m_moment.generation;
}

/// A batch is kept whole or not at all: the states between its changes are none of the document.
void DocumentRecovery::sendEdits() {
    m_moment.changed = QDateTime::currentMSecsSinceEpoch();
    m_writer->add(std::exchange(m_edits, {}), m_storage.text(), m_moment);
}
