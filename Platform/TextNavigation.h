#pragma once

#include "Rope.h"

/// Where a caret goes in a text. Offsets count units of `in`; a caret stands between two characters as a
/// reader sees them (extended grapheme clusters), and CR LF is one of those. Looks at a few hundred units
/// around the caret, never at the whole of a line.
namespace TextNavigation {

/// The end of the character after `caret`; the end of the text when there is none.
Offset nextCharacter(Offset caret, const Rope& in);

/// The start of the character before `caret`; 0 when there is none.
Offset previousCharacter(Offset caret, const Rope& in);

/// The nearest caret position at or before `offset`.
Offset characterStart(Offset offset, const Rope& in);

/// Past white space and then past the word, or the run of punctuation, that follows.
Offset nextWord(Offset caret, const Rope& in);

/// The start of the word or the run of punctuation before `caret`, white space between them skipped.
Offset previousWord(Offset caret, const Rope& in);

/// The word, run of punctuation or run of white space around `at`, for a double click.
SourceRange word(Offset at, const Rope& in);

/// The end of a line as a caret sees it: before the LF or the CR LF that ends it.
Offset lineEnd(std::size_t ofLine, const Rope& in);

/// Where the start of a line is to a caret: before its first character that is not blank, or at its very start
/// for a caret that is there already, or when more than some thousand blanks come first.
Offset lineHome(Offset caret, const Rope& in);

/// The part of a word that ends at `caret`, as far as something may complete it: letters, digits, and the
/// hyphens, dots, colons and low lines that join them in names.
SourceRange partialWord(Offset caret, const Rope& in);

/// Whether `unit` is part of a word for the moves above: a letter, number, mark or underscore, or half of a
/// surrogate pair.
bool isWordUnit(char16_t unit);

/// "\r\n" when the first line ends in it, otherwise "\n".
std::u16string_view lineEnding(const Rope& of);

} // namespace TextNavigation
