#pragma once

#include "RopeFlattener.h"
#include "TextHistory.h"
#include "TextMirror.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string_view>

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

    /// How the text is edited: what a view types into it goes this way, past nobody.
    TextHistory& history() { return m_history; }

    /// The text in one array, for aids that look at all of it while a key is down. Put together at most once
    /// a generation; from then on the text is stored there.
    SourceText sourceText() const;

    /// Grows by exactly 1 with every replacement of characters, also those of one batch, an undo or a redo.
    std::int64_t generation() const { return m_generation; }

    /// Where changes are registered from now on; null for nowhere. Not owned, may go first.
    UndoManager* undoManager() const { return m_history.undoManager(); }
    void setUndoManager(UndoManager* undoManager) { m_history.setUndoManager(undoManager); }

    /// Called once for every increase of `generation`, when the batch is over and the mirror up to date.
    void setOnChange(std::function<void()> onChange) { m_onChange = std::move(onChange); }

    /// Applies `edits`, given in any order in the offsets of the current text, as one undo step. Of two
    /// insertions at one offset the text of the first given ends up last. Stops the program, with the text as
    /// it was, when edits overlap or reach beyond the text. No edits, no step; no name, and a group that is
    /// open already keeps its own.
    void apply(std::span<const TextEdit> edits, const QString& actionName = {});

    /// The same for one edit whose units are a rope already: takes no time in proportion to them. `after` is
    /// selected then, and comes into view.
    void replace(SourceRange range, const Rope& units, const QString& actionName = {},
                 std::optional<TextSelection> after = std::nullopt) {
        m_history.replace(range, units, actionName, after);
    }

    /// Stores the text elsewhere: `same` has the same units. No change. Returns the text as it was stored.
    Rope moveTo(const Rope& same) { return move(same); }

    /// What the view of the text has selected.
    TextSelection selection() const { return m_history.selection(); }

    /// Replaces what the user types, as `TextHistory::type` does.
    void type(SourceRange range, std::u16string_view units) { m_history.type(range, units); }

private:
    void requireThread() const;
    void countEdit();
    void finishBatch();

    Rope move(const Rope& same) const;

    mutable TextStorage m_storage; ///< Where the text is stored is no part of what the buffer is.
    TextHistory m_history;
    std::shared_ptr<TextMirror> m_mirror;
    std::function<void()> m_onChange;
    std::int64_t m_generation = 0;
    std::int64_t m_announcedGeneration = 0;

    mutable RopeFlattener m_flattener;
    mutable SourceText m_sourceText;
    mutable std::int64_t m_sourceTextGeneration = -1;
};
