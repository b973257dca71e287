#pragma once

#include "SourceText.h"

#include <cstdint>
#include <optional>
#include <string>

/// Answers small questions about the source at a caret without parsing the document, so also where the user
/// is in the middle of typing broken markup. Every offset counts units of `in`; one beyond it stops the
/// program. All take time linear in the text at most.
namespace TagMatcher {

/// What a caret stands in.
enum class Context : std::uint8_t {
    content,        ///< Character data between tags; also the very start of the text.
    tag,            ///< A start or end tag or a declaration, outside quotes.
    attributeValue, ///< The same, inside quotes.
    comment,
    cdata,
    instruction,
};

/// What a caret at `at` stands in: just after `<!--` it is a comment, just after `-->` it is content,
/// whatever stands inside the comment. Only the nearest `<!--`, `<![CDATA[`, `<?` and `<` before the caret
/// are looked at: an opener that stands inside another construct, as in `<![CDATA[<!--]]>`, counts too.
Context context(Offset at, const SourceText& in);

/// The name of the start tag that a `>` typed at `endingAt` would end, the whole of it also when it goes on
/// behind the offset. None inside an end tag, a quoted value or whatever else, and after the `/` of `<br/`.
std::optional<std::u16string> openTagName(Offset endingAt, const SourceText& in);

/// The name of the innermost element that is open just before `before`: of the nearest start tag that no end
/// tag of the same name follows. What is wrong with the tags inside that element is forgiven.
std::optional<std::u16string> unclosedElement(Offset before, const SourceText& in);

/// The name of the start tag, or of the end tag, whose name `around` stands in or right at either end of.
std::optional<SourceRange> startTagName(Offset around, const SourceText& in);
std::optional<SourceRange> endTagName(Offset around, const SourceText& in);

/// The name in the end tag that matches the start tag whose `<` is at `forStartTagAt`. Start and end tags are
/// counted, names are not compared. None when the start tag closes itself or is cut off by another `<`, when
/// the end tag has no name, and when there is no start tag or no end tag.
std::optional<SourceRange> matchingCloseName(Offset forStartTagAt, const SourceText& in);

/// The name in the start tag that matches the end tag whose `<` is at `forEndTagAt`: exactly the one whose
/// `matchingCloseName` is in that end tag.
std::optional<SourceRange> matchingOpenName(Offset forEndTagAt, const SourceText& in);

} // namespace TagMatcher
