#pragma once

#include "TextEdit.h"
#include "TextSelection.h"
#include "TextStorage.h"
#include "UndoManager.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// Edits a text storage so that every change can be undone, whoever makes it: what is typed into a view and
/// what a program applies are steps of one history. An undone or redone step puts the selection back too.
///
/// Where the memory is too short for a change, `std::bad_alloc` is thrown, and text and history are as before.
///
/// Offsets count UTF-16 units. Lives on the thread of the storage.
class TextHistory : public QObject {
    Q_OBJECT

public:
    /// `storage` outlives the history.
    explicit TextHistory(TextStorage& storage, QObject* parent = nullptr);

    TextStorage& storage() { return m_storage; }
    const Rope& text() const { return m_storage.text(); }

    /// Where changes are registered from now on; null for nowhere. Not owned, may go first.
    UndoManager* undoManager() const { return m_undoManager; }
    void setUndoManager(UndoManager* undoManager);

    /// Whose selection steps remember and put back: the view that shows the text.
    struct SelectionKeeper {
        std::function<TextSelection()> current;
        std::function<void(TextSelection)> restore; ///< Called while the batch of the step is still open.
    };
    void setSelectionKeeper(SelectionKeeper keeper) { m_selectionKeeper = std::move(keeper); }

    /// What is selected now; the start of the text without a keeper.
    TextSelection selection() const;

    /// Applies `edits`, given in any order in the offsets of the current text, as one undo step. Of two
    /// insertions at one offset the text of the first given ends up last. Stops the program, with the text as
    /// it was, when edits overlap or reach beyond the text. No edits, no step; no name, and a group that is
    /// open already keeps its own. What is typed afterwards is a new step.
    void apply(std::span<const TextEdit> edits, const QString& actionName = {});

    /// The same for one edit whose units are a rope already: takes no time in proportion to them. `after` is
    /// selected then, and comes into view; without it the selection follows as it does for any edit.
    void replace(SourceRange range, const Rope& units, const QString& actionName = {},
                 std::optional<TextSelection> after = std::nullopt);

    /// Replaces what the user types or erases at the caret. Joins the undo step "Escribir", or "Eliminar" when
    /// nothing is put in, before it as long as nothing else happened since, the caret stayed where that step
    /// left it, no new word begins, there was no pause, and neither holds a line feed.
    void type(SourceRange range, std::u16string_view units);

    /// Applies what one key of the user changes in several places at once, as `apply` does, and puts the
    /// caret at `caret` of the text afterwards. Joins the step before it if that was made in this way too,
    /// under the same name, and nothing else happened since, the caret stayed, there was no pause, and both
    /// put something in or both erase.
    void typeTogether(std::span<const TextEdit> edits, Offset caret, const QString& actionName);

    /// A pause as long as this ends what is typed in one go; two seconds at first.
    void setLongestPause(std::chrono::milliseconds pauseLength) { m_longestPause = pauseLength; }

    /// What is typed next is a new step.
    void breakUndoCoalescing() {
        m_typing.reset();
        m_together.reset();
    }

    /// The same, unless `selection` is the caret as typing left it.
    void selectionMoved(TextSelection selection);

private:
    /// A replacement to be made; long stretches share the chunks of the text that they come from.
    struct Replacement {
        SourceRange range;
        std::variant<std::u16string, Rope> units;
    };
    using Replacements = std::vector<Replacement>;

    /// What is selected once a step is undone, and once it is redone.
    struct Selections {
        TextSelection before;
        TextSelection after;
    };

    /// What was typed since the last break: the units of `range` stand in the place of `replaced`.
    struct TypingRun {
        SourceRange range;
        Rope replaced;
        TextSelection before;
        bool isErasing = false; ///< Nothing was put in.
        std::uint64_t coalescingMark = 0;
    };

    /// What `typeTogether` did since the last break, as one step.
    struct TogetherRun {
        std::vector<Replacements> opposites; ///< Of one key after the other.
        Selections selections;
        QString actionName;
        bool isErasing = false;
        std::uint64_t coalescingMark = 0;
    };

    void requireThread() const;
    Replacements replacements(std::span<const TextEdit> edits) const;
    bool canJoinTogetherRun(bool isErasing, const QString& actionName) const;
    void registerTogetherRun();
    void applyAsOneStep(const Replacements& replacements, const QString& actionName,
                        std::optional<TextSelection> wanted);
    bool canJoinTypingRun(SourceRange range, std::u16string_view units) const;
    void growTypingRun(SourceRange range, SourceRange typed);
    void registerTypingRun();
    void registerOpposite(Replacements opposite, Selections selections);
    void replace(const Replacements& replacements, std::optional<TextSelection> after);
    void replaceAll(const Replacements& replacements);
    void replaceBack(const Replacements& replacements, Selections selections);
    TextSelection selectionAfter(const Replacements& opposite) const;
    Replacements inverse(const Replacements& of) const;

    TextStorage& m_storage;
    QPointer<UndoManager> m_undoManager;
    SelectionKeeper m_selectionKeeper;
    std::shared_ptr<TypingRun> m_typing; ///< Shared with its undo step; null when nothing was typed.
    std::shared_ptr<TogetherRun> m_together; ///< Likewise.
    QElapsedTimer m_sinceTyping;
    std::chrono::milliseconds m_longestPause{2000};
};
