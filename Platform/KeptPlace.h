#pragma once

#include "Rope.h"

/// Where `at`, an offset of `before`, is found once `units` stand in the place of `replaced` in that text. A
/// place inside of it keeps what is around it: all that stands before it or all that follows, where these
/// differ in white space only, else its line, where the replacement has one like it. Otherwise it keeps its
/// distance from the start.
///
/// Looks at a bounded part of the text around the place.
Offset keptPlace(Offset at, const Rope& before, SourceRange replaced, const Rope& units);
