#pragma once

#include "Rope.h"
#include "TextEdit.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// What the typing assistant inserted beyond the typed character, remembered so that the user may type it too
/// without doubling it:
///
/// - The first quote after an automatic `=""` opens the value that is open already. A single one turns the
///   pair into `''`.
/// - A typed `</` right before the end tag that came with a start tag moves the caret into that end tag, and
///   its name and `>` move it on. The break that Return put before the end tag goes away.
/// - After a `</` that was completed, its name and `>` typed by hand change nothing.
///
/// What turns out otherwise is put in as it was typed. A piece is forgotten when it changes, or when the
/// caret leaves the space before it. All offsets count units of the text of now.
class AutomaticInsertions {
public:
    /// The end tag that came with a start tag.
    struct EndTag {
        SourceRange space;  ///< From the start tag to the end tag, where the caret stays.
        std::u16string gap; ///< The line break that Return put before the tag, and the indentation after it.
        std::u16string name;

        std::u16string units() const;
    };

    /// A pair of quotes around the caret, and blanks typed between.
    struct Quotes {
        Offset caret = 0;
        Offset blanks = 0;
    };
    /// The caret moves through an end tag.
    struct Inside {
        EndTag tag;
        Offset lower = 0; ///< Of the tag.
        Offset caret = 0;
        Offset blanks = 0;   ///< Typed after the name.
        std::u16string rest; ///< Of the tag, after the caret and to be typed over.
    };
    /// The caret stands after an end tag that was completed.
    struct Behind {
        Offset caret = 0;
        std::u16string rest;  ///< To be typed over.
        std::u16string typed; ///< What of it was typed, and blanks after the name.
    };
    using State = std::variant<std::monostate, Quotes, Inside, Behind>;

    /// What the editor does instead of inserting a key: makes the edit, if there is one, puts the caret where
    /// it belongs, and hands the reply to `done`.
    struct Reply {
        std::optional<TextEdit> edit;
        Offset caret = 0;
        State state;                  ///< From now on.
        std::optional<EndTag> endTag; ///< Waits again.
    };

    /// Whether as many elements end in a range of the text as start there, and no markup is open at its end.
    using IsBalanced = std::function<bool(SourceRange)>;

    /// The same for a whole text, which starts in content.
    static bool isBalanced(std::u16string_view text);

    /// What to do with a character typed at `caret`; none where it is inserted like any other.
    std::optional<Reply> type(char16_t typed, Offset caret, const Rope& text, const IsBalanced& isBalanced);

    /// What to do with a Backspace at `caret`; none where it erases as it always does.
    std::optional<Reply> erase(Offset caret, const Rope& text);

    /// What was typed over that may turn out to be something else, and does if another key than a character
    /// follows: to be inserted. Forgets it.
    std::u16string takeUndecided();

    // What happened to the text

    void done(Reply reply);

    /// The assistant put `inserted` in for `typed`, with the caret at `caret`.
    void add(char16_t typed, const TextEdit& inserted, Offset caret);
    /// The same for a line break.
    void addLineBreak(const TextEdit& inserted, Offset caret);

    /// The units of `edited` are new, by so many more than stood there before.
    void followEdit(SourceRange edited, std::int64_t changeInLength);
    void followSelection(SourceRange selection);

private:
    std::optional<Reply> typeIn(const Quotes& quotes, char16_t typed, Offset caret, const Rope& text) const;
    std::optional<Reply> typeIn(const Inside& inside, char16_t typed, Offset caret, const Rope& text) const;
    std::optional<Reply> typeIn(const Behind& behind, char16_t typed, Offset caret, const Rope& text) const;
    std::optional<Reply> typeIn(std::monostate, char16_t, Offset, const Rope&) const { return std::nullopt; }
    std::optional<Reply> enterEndTag(Offset caret, const Rope& text, const IsBalanced& isBalanced);

    std::vector<EndTag> m_endTags; ///< The spaces of the first ones hold the later ones.
    State m_state;
};
