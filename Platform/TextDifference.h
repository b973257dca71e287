#pragma once

#include "Rope.h"
#include "TextEdit.h"

#include <optional>

/// One edit that turns `before` into `after`: what stands between their common start and their common end.
/// Neither end of it lies inside a surrogate pair or a CR LF. Nothing for equal texts. Takes time linear in
/// the texts, at the speed of the memory.
std::optional<TextEdit> textDifference(const Rope& before, const Rope& after);
