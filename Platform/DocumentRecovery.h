#pragma once

#include "RecoveryWriter.h"
#include "TextStorage.h"

#include <QObject>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

/// Follows the text of one open document and has it kept while it is not saved. An untouched document costs
/// nothing; a change costs a note of it.
///
/// Lives on the thread of the text, which outlives it. Once it goes, what is kept stays kept: whoever saved
/// the document, or means to lose it, says `forget` before.
class DocumentRecovery : public QObject {
    Q_OBJECT

public:
    /// Made by `RecoveryStore`.
    DocumentRecovery(TextStorage& storage, std::unique_ptr<RecoveryWriter> writer);

    /// Where the document is now, how it is written, and what its file is like. When a save ends after the
    /// text changed again, only this is due; `forget` is for a text that its file has.
    void setFacts(const RecoveryFacts& facts);

    /// Kept with the next change of the text.
    void setSelection(SourceRange selection);

    /// The text is saved, or given up: what is kept of it is removed, and the next change begins anew.
    void forget();

    /// How many changes there were.
    std::uint64_t generation() const { return m_moment.generation; }

    /// Waits until all changes are kept; answers whether that came before the time was over.
    bool waitUntilKept(std::chrono::milliseconds timeout) const { return m_writer->waitUntilIdle(timeout); }

private:
    void noteEdit(SourceRange editedRange, std::int64_t changeInLength);
    void sendEdits();

    TextStorage& m_storage;
    RecoveryMoment m_moment;
    /// Of the batch that is under way; nothing when they are too many.
    std::optional<RecoveryEdits> m_edits = RecoveryEdits();
    std::unique_ptr<RecoveryWriter> m_writer;
};
