#pragma once

#include "Rope.h"
#include "TextEdit.h"

/// Where `at`, an offset of `before`, is found once `edit` is made of that text. A place that the edit
/// replaces keeps what is around it: all that stands before it or all that follows, where these differ in
/// white space only, else its line, where the replacement has one like it. Otherwise it keeps its distance
/// from the start.
///
/// Looks at a bounded part of the text around the place.
Offset keptPlace(Offset at, const Rope& before, const TextEdit& edit);
