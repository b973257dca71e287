#pragma once

#include <string_view>

/// Tells whether a name is another one mistyped.
namespace NameSimilarity {

/// Whether few letters too many, missing, wrong or exchanged with their neighbours tell the names apart: none
/// in names of up to two units, one in names of up to five, two in longer ones. ASCII letters of the other
/// case never count. Takes time linear in the shorter name.
bool areClose(std::u16string_view first, std::u16string_view second);

} // namespace NameSimilarity
