#include "DocumentRecovery.h"

#include <QDateTime>

#include <utility>

namespace {

/// A batch of more changes than this costs less when its whole text is written, on another thread, than when
/// each of them is noted here.
constexpr std::size_t mostEdits = 1000;

/// A few units are copied in less time than a part of a rope is made.
Rope unitsOf(const Rope& text, SourceRange range) {
    constexpr Offset few = 512;
    return range.length() <= few ? Rope(text.units(range)) : text.part(range);
}

} // namespace

DocumentRecovery::DocumentRecovery(TextStorage& storage, std::unique_ptr<RecoveryWriter> writer)
    : m_storage(storage), m_writer(std::move(writer)) {
    connect(&storage, &TextStorage::editProcessed, this, &DocumentRecovery::noteEdit);
    connect(&storage, &TextStorage::editingEnded, this, &DocumentRecovery::sendEdits);
    connect(&storage, &TextStorage::textMoved, this, [this] { m_writer->moveTo(m_storage.text()); });
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
    ++m_moment.generation;
    if (!m_edits) {
        return;
    }
    if (m_edits->size() == mostEdits) {
        m_edits.reset();
        return;
    }
    const SourceRange replaced(editedRange.lower, editedRange.upper - changeInLength);
    m_edits->push_back({replaced, unitsOf(m_storage.text(), editedRange)});
}

/// A batch is kept whole or not at all: the states between its changes are none of the document.
void DocumentRecovery::sendEdits() {
    m_moment.changed = QDateTime::currentMSecsSinceEpoch();
    m_writer->add(std::exchange(m_edits, RecoveryEdits()), m_storage.text(), m_moment);
}
