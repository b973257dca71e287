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

/// What the typing assistant inserted beyond the typed character, remembered so that the text becomes what
/// was typed, whether the user relies on the insertion or types it too, with slips that Backspace corrects:
///
/// - The first quote after an automatic `=""` opens the value that is open already; a single one turns the
///   pair into `''`. The quote typed at the end closes it, whatever the value holds. Backspace takes both
///   quotes along.
/// - The start of an end tag typed right before the end tag that came with a start tag moves the caret into
///   that one, and what is typed of its name and `>` moves it on. The break that Return put before the end
///   tag goes away. Backspace at the `>` of the start tag takes the end tag along; the next `>` brings it
///   back to its place.
/// - After a `</` that was completed, its name and `>` typed by hand change nothing.
///
/// What turns out otherwise is put in as it was typed. A piece is forgotten when it changes, or when the
/// caret goes farther than one place out of the space before it. All offsets count units of the text of now.
class AutomaticInsertions {
public:
    /// The end tag that came with a start tag.
    struct EndTag {
        SourceRange space;  ///< From the start tag to the end tag, where the caret stays.
        std::u16string gap; ///< The line break that Return put before the tag, and the indentation after it.
        std::u16string name;

        std::u16string units() const;
    };

    /// A value between automatic quotes.
    struct Value {
        SourceRange inside;
        bool isOpened = false; ///< Its first quote was typed too.
        bool isClosed = false; ///< The last one, which the caret stands behind.
    };
    /// The caret moves through an end tag.
    struct Inside {
        EndTag tag;
        Offset lower = 0; ///< Of the tag.
        Offset caret = 0;
        std::u16string rest; ///< Of the tag, after the caret and to be typed over.
    };
    /// The caret stands after an end tag that was completed.
    struct Behind {
        Offset tagEnd = 0;
        std::u16string rest;  ///< To be typed over: the name and `>`.
        std::u16string typed; ///< What of it was typed, and blanks after the name. Not in the text.
        Offset others = 0;    ///< Units typed after the tag because they are not the rest.
    };
    /// The `>` of an end tag that was completed was erased.
    struct Cut {
        Offset caret = 0;
        std::u16string rest; ///< As `Behind` has it.
    };
    using State = std::variant<std::monostate, Value, Inside, Behind, Cut>;

    /// A start tag that lost its `>`, and its end tag with it.
    struct Reopened {
        SourceRange content; ///< From the `<` of the start tag to where the end tag stood.
        std::u16string gap;  ///< Of the end tag.
    };

    /// What the editor does instead of a key: makes the edit, if there is one, puts the caret where it
    /// belongs, and hands the reply to `done`.
    struct Reply {
        std::optional<TextEdit> edit;
        Offset caret = 0;
        State state;                  ///< From now on.
        std::optional<EndTag> endTag; ///< Waits again.
        std::optional<Reopened> reopened;
    };

    /// Whether as many elements end in a range of the text as start there, and no markup is open at its end.
    using IsBalanced = std::function<bool(SourceRange)>;

    /// The same for a whole text, which starts in content.
    static bool isBalanced(std::u16string_view text);

    // What to do instead of a key; none where it does what it always does.

    std::optional<Reply> type(char16_t typed, Offset caret, const Rope& text,
                              const IsBalanced& isBalanced) const;

    /// For a Backspace that would erase `range`.
    std::optional<Reply> erase(SourceRange range, const Rope& text) const;

    /// For anything else that puts `units` in the place of `range`.
    std::optional<Reply> replace(SourceRange range, std::u16string_view units, const Rope& text) const;

    /// What to do at the caret before a key that is no character: what was typed over may turn out to be
    /// something else, and does now.
    std::optional<Reply> settle(Offset caret, const Rope& text) const;

    /// How to end a start tag at the caret, where the assistant wants to write `end`: the name of its end tag
    /// is what stands before the caret, and an end tag that was there before the `>` was erased goes back to
    /// its place.
    TextEdit endOfStartTag(const TextEdit& end, const Rope& text) const;

    // What happened to the text

    void done(Reply reply);

    /// The assistant put `inserted` in for `typed`, with the caret at `caret`.
    void add(char16_t typed, const TextEdit& inserted, Offset caret);
    /// The same for a line break.
    void addLineBreak(const TextEdit& inserted, Offset caret);

    /// The units of `edited` are new, by so many more than stood there before.
    void followEdit(SourceRange edited, std::int64_t changeInLength);
    void followSelection(SourceRange selection);

    bool isEmpty() const;

private:
    std::optional<Reply> typeIn(const Value& value, char16_t typed, Offset caret, const Rope& text) const;
    std::optional<Reply> typeIn(const Inside& inside, char16_t typed, Offset caret, const Rope& text) const;
    std::optional<Reply> typeIn(const Behind& behind, char16_t typed, Offset caret, const Rope& text) const;
    std::optional<Reply> typeIn(const Cut& cut, char16_t typed, Offset caret, const Rope& text) const;
    std::optional<Reply> typeIn(std::monostate, char16_t, Offset, const Rope&) const { return std::nullopt; }
    std::optional<Reply> eraseIn(const Value& value, SourceRange range, const Rope& text) const;
    std::optional<Reply> eraseIn(const Inside& inside, SourceRange range, const Rope& text) const;
    std::optional<Reply> eraseIn(const Behind& behind, SourceRange range, const Rope& text) const;
    std::optional<Reply> eraseIn(const Cut&, SourceRange, const Rope&) const { return std::nullopt; }
    std::optional<Reply> eraseIn(std::monostate, SourceRange, const Rope&) const { return std::nullopt; }
    std::optional<Reply> enterEndTag(char16_t typed, Offset caret, const Rope& text,
                                     const IsBalanced& isBalanced) const;
    std::optional<Reply> reopen(SourceRange erased, const Rope& text) const;
    void followEditInState(SourceRange edited, std::int64_t changeInLength);

    std::vector<EndTag> m_endTags; ///< The spaces of the first ones hold the later ones.
    State m_state;
    std::optional<Reopened> m_reopened;
};
