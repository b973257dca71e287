#pragma once

#include "IndentStyle.h"
#include "SourceText.h"
#include "TextEdit.h"

#include <concepts>
#include <optional>
#include <string>
#include <variant>
#include <vector>

/// Decides, for one key in the source editor, whether the editor does something else than insert it. Pure
/// functions: the caller applies what they answer, as one change. Line breaks are those of the text. A
/// selection beyond the text stops the program.
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

/// The key.
using Input = std::variant<Character, Tab, Backtab, Newline>;

/// Apply the edits instead of the key, select the range, and track the placeholders if there are some.
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

/// What the key does, none when it does what it always does.
///
/// - `>` ends a start tag and writes its end tag, `/` after `<` writes the end tag of the element that is
///   open, `=` in a tag brings its quotes along, a quote steps over the one that closes the value.
/// - A new line is indented like the one before, by one unit more after a start tag.
/// - Tab expands the abbreviation before the caret. While placeholders are tracked (`inSnippet`) it goes to
///   the next one instead, unless the abbreviation is more than a name. Otherwise it indents, and Backtab
///   outdents.
std::optional<Action> handle(const Input& input, const SourceText& in, SourceRange selection,
                             IndentStyle indent, bool inSnippet);

/// Makes the lines of the selection one comment, or uncomments them when they are one. The blanks around them
/// stay outside. None when there is nothing else than blanks. Selects the comment, or what was in it.
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
