#pragma once

#include <string>
#include <string_view>

/// Turns what a user typed into character data or an attribute's value, and back. Nothing fails and nothing
/// is reported: what cannot be interpreted is passed through.
///
/// All three compare whole characters, as a reader sees them: a `<` that carries a combining mark is not `<`,
/// a CR with its LF is not LF, and both stay as they are.
namespace Escaping {

/// `text` as character data: `&`, `<` and `>` become `&amp;`, `&lt;` and `&gt;`. The very same string,
/// uncopied, when it holds none of them.
std::u16string escapeText(std::u16string text);

/// `value` as it may stand between two `quote`s, a double quote or an apostrophe: `&`, `<` and the quote in
/// use become entities, LF and tab character references, so that reading the document back does not turn them
/// into spaces.
std::u16string escapeAttribute(std::u16string_view value, char16_t quote);

/// `text` with its references replaced, one level of them: `&amp;`, `&lt;`, `&gt;`, `&quot;`, `&apos;` and
/// character references such as `&#65;` and `&#x41;`, of at most ten characters between `&` and `;`. All else
/// stays literally, also other entities and references to surrogates or beyond U+10FFFF. Works within the
/// storage of `text`, so nothing is ever copied; the very same string when it holds no reference.
///
/// Undoes `escapeText` always, and `escapeAttribute` unless an LF or tab stands right before a combining mark
/// or right after a prepended sign, which takes the `;` or `&` of its reference into a character of its own.
std::u16string unescape(std::u16string text);

} // namespace Escaping
