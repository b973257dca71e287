#pragma once

#include "IndentStyle.h"
#include "SourceText.h"
#include "TextEdit.h"

#include <concepts>
#include <optional>
#include <string>
#include <variant>
#include <vector>

/// Decides, for one key in the source editor, whether the editor does something other than insert it. The
/// functions are pure: the caller applies the action that they return, as one change. The program aborts if
/// the selection reaches beyond the text.
namespace TypingAssistant {

struct Character {
    std::u16string string; ///< What was typed.

    bool operator==(const Character&) const = default;
};
struct Tab {
    bool operator==(const Tab&) const = default;
};
struct Backtab {
    bool operator==(const Backtab&) const = default;
};
struct Newline {
    bool operator==(const Newline&) const = default;
};

/// The key that was pressed, or the character that was typed.
using Input = std::variant<Character, Tab, Backtab, Newline>;

/// Apply `edits` instead of the key, select `selection`, and track `placeholders` if there are any.
struct Edit {
    std::vector<TextEdit> edits;
    SourceRange selection;                 ///< In the text after the edits.
    std::vector<SourceRange> placeholders; ///< In the text after the edits.

    bool operator==(const Edit&) const = default;
};
struct NextPlaceholder {
    bool operator==(const NextPlaceholder&) const = default;
};
struct PreviousPlaceholder {
    bool operator==(const PreviousPlaceholder&) const = default;
};

/// What the editor does instead of inserting the key.
using Action = std::variant<Edit, NextPlaceholder, PreviousPlaceholder>;

template <class Case>
concept WithoutPayload =
    std::same_as<Case, Tab> || std::same_as<Case, Backtab> || std::same_as<Case, Newline> ||
    std::same_as<Case, NextPlaceholder> || std::same_as<Case, PreviousPlaceholder>;

/// The action for `input`; none if the editor should insert it as usual.
///
/// - `>` at the end of a start tag also inserts the end tag. `/` after `<` completes the end tag of the open
///   element. `=` after an attribute's name also inserts two quotes. A quote before the closing quote of a
///   value only moves the caret past it.
/// - A new line starts with the text's line break and the indentation of the line before; after a start tag
///   it is indented by one unit more.
/// - Tab expands the abbreviation before the caret. While placeholders are tracked (`inSnippet`), it expands
///   only an abbreviation that is more than a name, and otherwise goes to the next placeholder; Backtab goes
///   to the previous one. In all other cases Tab indents and Backtab outdents.
std::optional<Action> handle(const Input& input, const SourceText& in, SourceRange selection,
                             IndentStyle indent, bool inSnippet);

/// Turns the lines of the selection into one comment; if they are one comment, removes its delimiters. White
/// space around them stays outside the comment. Selects the comment or its former content. None if the lines
/// contain only white space.
std::optional<Action> toggleComment(const SourceText& in, SourceRange selection);

} // namespace TypingAssistant

template <>
struct std::hash<TypingAssistant::Character> {
    std::size_t operator()(const TypingAssistant::Character& character) const noexcept {
        return hashOf(character.string);
    }
};
template <>
struct std::hash<TypingAssistant::Edit> {
    std::size_t operator()(const TypingAssistant::Edit& edit) const noexcept {
        return hashOf(hashOfList(edit.edits), edit.selection, hashOfList(edit.placeholders));
    }
};
template <TypingAssistant::WithoutPayload Case>
struct std::hash<Case> {
    std::size_t operator()(Case) const noexcept { return 0; }
};
