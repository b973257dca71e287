#pragma once

#include "DocumentTree.h"
#include "TextEdit.h"

#include <span>
#include <vector>

/// The fixes of many problems as one change.
namespace ProblemFixes {

/// The edits of all fixes that `tree` has to offer, in the order of the problems, to be applied together. Of
/// two fixes of the same piece of markup, one that removes it and one that adds to it, only the first is
/// taken. Takes time linear in the problems.
std::vector<TextEdit> edits(const DocumentTree& tree);

/// One edit of the least range of `text` that does what all of `edits`, at least one, do together.
TextEdit merged(std::span<const TextEdit> edits, const SourceText& text);

} // namespace ProblemFixes
