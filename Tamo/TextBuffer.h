#pragma once

#include "RopeFlattener.h"
#include "TextEdit.h"
#include "TextMirror.h"
#include "TextStorage.h"
#include "UndoManager.h"

#include <QPointer>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <variant>
#include <vector>

/// The text of an open document and its history. Every change of the text, whoever wants it, passes through
/// here: it is counted, can be undone, and reaches the mirror that a save reads.
///
/// Offsets count UTF-16 units. Lives on one thread; an operation called from another stops the program.
class TextBuffer : public QObject {
    Q_OBJECT

public:
    TextBuffer(Rope initialText, std::shared_ptr<TextMirror> mirror, QObject* parent = nullptr);

    /// For whoever follows the text. The view shows it, but edits through the operations below.
    TextStorage& storage() { return m_storage; }

    const Rope& text() const { return m_storage.text(); }

    /// The text in one array, for aids that look at all of it while a key is down; put together at most once
    /// a generation.
    SourceText sourceText() const;

    /// Grows by exactly 1 with every replacement of characters, also those of one batch, an undo or a redo.
    std::int64_t generation() const { return m_generation; }

    /// Where changes are registered from now on; null for nowhere. Not owned, may go first.
    UndoManager* undoManager() const { return m_undoManager; }
    void setUndoManager(UndoManager* undoManager);

    /// Called once for every increase of `generation`, when the batch is over and the mirror up to date.
    void setOnChange(std::function<void()> onChange) { m_onChange = std::move(onChange); }

    /// Called after each programmatic edit, so that the view which shows the text starts a new undo step
    /// with what is typed next.
    void setBreakUndoCoalescing(std::function<void()> breakUndoCoalescing) {
        m_breakUndoCoalescing = std::move(breakUndoCoalescing);
    }

    /// Applies `edits`, given in any order in the offsets of the current text, as one undo step. Of two
    /// insertions at one offset the text of the first given ends up last. Stops the program, with the text as
    /// it was, when edits overlap or reach beyond the text. No edits, no step; no name, and a group that is
    /// open already keeps its own.
    void apply(std::span<const TextEdit> edits, const QString& actionName = {});

    /// Replaces what the user types, pastes or deletes at the caret. Joins the undo step "Escribir" before it
    /// as long as nothing else happened since, the caret stayed where that step left it, and neither holds a
    /// line feed.
    void type(SourceRange range, std::u16string_view units);

private:
    /// A replacement to be made; long stretches share the chunks of the text that they come from.
    struct Replacement {
        SourceRange range;
        std::variant<std::u16string, Rope> units;
    };
    using Replacements = std::vector<Replacement>;

    /// What was typed since the last break: the units of `range` stand in the place of `replaced`.
    struct TypingRun {
        SourceRange range;
        Rope replaced;
        std::uint64_t coalescingMark = 0;
    };

    void requireThread() const;
    bool canJoinTypingRun(SourceRange range) const;
    void growTypingRun(SourceRange range, SourceRange typed);
    void registerTypingRun();
    void replaceUndoably(const Replacements& replacements);
    Replacements inverse(const Replacements& of) const;
    void countEdit();
    void finishBatch();

    TextStorage m_storage;
    std::shared_ptr<TextMirror> m_mirror;
    QPointer<UndoManager> m_undoManager;
    std::function<void()> m_onChange;
    std::function<void()> m_breakUndoCoalescing;
    std::int64_t m_generation = 0;
    std::int64_t m_announcedGeneration = 0;
    std::shared_ptr<TypingRun> m_typing; ///< Shared with its undo step; null when nothing was typed.

    mutable RopeFlattener m_flattener;
    mutable SourceText m_sourceText;
    mutable std::int64_t m_sourceTextGeneration = -1;
};
