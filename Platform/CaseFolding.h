#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Units without the difference between upper and lower case: the simple case folding of Unicode, one unit
/// for one. The letters beyond U+FFFF stand in two units, and keep their case.
namespace CaseFolding {

/// The greatest number of units that fold to the same one.
inline constexpr std::size_t mostVariants = 4;

char16_t folded(char16_t unit);
std::u16string folded(std::u16string_view units);

/// The units that fold to `foldedUnit`, itself among them; for "k" also "K" and the sign of the kelvin.
std::u16string variants(char16_t foldedUnit);

} // namespace CaseFolding
