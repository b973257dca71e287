#pragma once

#include "AutomaticInsertions.h"
#include "PairedTagRename.h"

#include <deque>
#include <optional>
#include <string>

/// What was typed so far and is not in the text.
struct Typing {
    AutomaticInsertions insertions;
    std::optional<PairedTagRename::Names> renamed; ///< By the last edit.

    bool isEmpty() const { return insertions.isEmpty() && !renamed; }
};

/// Remembers what belonged to each of the last states of a text while it was typed, so that it comes back
/// when the text does by undo. A state is known by the size of the text, the caret and the units around that.
class TypingMemory {
public:
    static constexpr std::size_t mostStates = 64;

    /// `typing` belongs to `text` with the caret at `caret`, whatever did before.
    void note(const Rope& text, Offset caret, const Typing& typing);

    /// What was noted last for this state; none where nothing was.
    std::optional<Typing> find(const Rope& text, Offset caret) const;

private:
    struct State {
        Offset size = 0;
        Offset caret = 0;
        std::u16string around;

        bool operator==(const State&) const = default;
    };
    struct Noted {
        State state;
        Typing typing;
    };

    static State state(const Rope& text, Offset caret);

    std::deque<Noted> m_noted; ///< The last at the end.
};
