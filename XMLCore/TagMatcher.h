#pragma once

#include "SourceText.h"

#include <cstdint>
#include <optional>
#include <string>

/// Answers questions about the source at a caret without parsing the document, so that they can be asked
/// while the user is typing incomplete markup. Offsets count units of `in`; the program aborts if one lies
/// beyond it, except in `matchingOpenName`. Each function takes at most linear time in the text.
namespace TagMatcher {

/// The kind of construct that contains a caret.
enum class Context : std::uint8_t {
    content,        ///< Character data between tags; also the very start of the text.
    tag,            ///< A start tag, an end tag or a declaration, outside quotes.
    attributeValue, ///< A start tag, an end tag or a declaration, inside quotes.
    comment,
    cdata,
    instruction,
};

/// The kind of construct that contains a caret at `at`. Just after `<!--` it is `comment`, just after `-->`
/// it is `content`, whatever the comment contains. Only the nearest `<!--`, `<![CDATA[`, `<?` and `<` before
/// the caret are considered, so an opener inside another construct counts too, as in `<![CDATA[<!--]]>`.
Context context(Offset at, const SourceText& in);

/// The name of the start tag that a `>` typed at `endingAt` would end. It is the whole name, even if the
/// offset is inside the name. None inside an end tag, a quoted value or any other construct, and after the
/// `/` of `<br/`.
std::optional<std::u16string> openTagName(Offset endingAt, const SourceText& in);

/// The name of the innermost element that is open just before `before`: that of the nearest start tag without
/// a following end tag of the same name. Unbalanced tags inside that element do not matter. None if there is
/// no such element.
std::optional<std::u16string> unclosedElement(Offset before, const SourceText& in);

/// The name of the start tag, or of the end tag, if `around` is inside this name or at either end of it;
/// otherwise none.
std::optional<SourceRange> startTagName(Offset around, const SourceText& in);
std::optional<SourceRange> endTagName(Offset around, const SourceText& in);

/// The name in the end tag that matches the start tag whose `<` is at `forStartTagAt`. Counts start and end
/// tags without comparing their names. None if there is no start tag, if it is self-closing or cut off by
/// another `<`, if there is no end tag, or if the end tag has no name.
std::optional<SourceRange> matchingCloseName(Offset forStartTagAt, const SourceText& in);

/// The name in the start tag that matches the end tag whose `<` is at `forEndTagAt`: the start tag for which
/// `matchingCloseName` returns the name in this end tag. None if there is no such tag, also if `forEndTagAt`
/// lies beyond the text.
std::optional<SourceRange> matchingOpenName(Offset forEndTagAt, const SourceText& in);

} // namespace TagMatcher
