#pragma once

#include "Rope.h"

#include <optional>
#include <string_view>

/// The line ends of a whole text.
namespace LineEndings {

/// `text` with every line end, LF or CR LF, as `ending`, which is one of the two; nothing where all are so
/// already. A CR elsewhere stays. Takes time linear in the text.
std::optional<Rope> converted(const Rope& text, std::u16string_view ending);

} // namespace LineEndings
