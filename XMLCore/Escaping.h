#pragma once

#include <string>
#include <string_view>

/// Escapes the user's text for use as character data or as an attribute's value, and reverses this. Nothing
/// fails: what cannot be interpreted stays as it is.
///
///
/// All three functions compare whole characters (extended grapheme clusters): `<` with a combining mark is
/// another character than `<`, CR LF is another character than LF, and both stay as they are.
namespace Escaping {

/// `text` as character data: `&`, `<` and `>` become `&amp;`, `&lt;` and `&gt;`. Returns the string itself,
/// without a copy, if it contains none of them.
std::u16string escapeText(std::u16string text);

/// `value` as the content of a quoted value. `quote` is a double quote or an apostrophe. `&`, `<` and `quote`
/// become entity references; LF and tab become character references, because a parser would turn them into
/// spaces.
std::u16string escapeAttribute(std::u16string_view value, char16_t quote);

/// `text` with its references resolved once: `&amp;`, `&lt;`, `&gt;`, `&quot;`, `&apos;` and character
/// references such as `&#65;` and `&#x41;`, with at most ten characters between `&` and `;`. Everything else
/// stays, also other entity references and references to surrogates or to numbers above U+10FFFF. Works in
/// place, in the storage of `text`.
///
///
/// This always reverses `escapeText`. It reverses `escapeAttribute` unless an LF or tab is directly followed
/// by a combining mark or directly preceded by a character with the property Prepend: these form one
/// character with the `;` or the `&` of the reference.
std::u16string unescape(std::u16string text);

} // namespace Escaping
