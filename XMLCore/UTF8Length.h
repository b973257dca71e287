#pragma once

#include <cstdint>
#include <string_view>

/// The length of `units` in UTF-8, in bytes. Returns the same as `UTF16::utf8Length`, and is many times
/// faster for the text of a whole document.
std::uint64_t utf8LengthOfText(std::u16string_view units);
