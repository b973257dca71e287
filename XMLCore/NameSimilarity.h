#pragma once

#include <string_view>

/// Tells whether one name is probably a mistyped form of another.
namespace NameSimilarity {

/// Whether the names differ in few typing errors: none if the longer name has up to two units, one if it has
/// up to five, otherwise two. An error is a unit too many, a missing unit, a wrong unit or two exchanged
/// neighbours. The case of ASCII letters is ignored. Takes time linear in the shorter name.
bool areClose(std::u16string_view first, std::u16string_view second);

} // namespace NameSimilarity
