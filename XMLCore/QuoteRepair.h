#pragma once

#include "DocumentTree.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// Repairs attribute values where the surrounding text shows which quote is missing or which `<` must be
/// escaped.
///
/// | malformed           | repaired               |
/// |---------------------|------------------------|
/// | `<a b="1 < 2">`     | `<a b="1 &lt; 2">`     |
/// | `<a b="x>t</a>`     | `<a b="x">t</a>`       |
/// | `<a b="x c="y">`    | `<a b="x" c="y">`      |
/// | `<a b=x">`          | `<a b="x">`            |
/// | `<a b=x>`, `<a b=>` | `<a b="x">`, `<a b="">`|
namespace QuoteRepair {

struct Repair {
    std::u16string title;
    std::vector<TextEdit> edits; ///< Ascending; they do not overlap.
    Offset end = 0; ///< The end of what the repair covers: problems before it need no repair of their own.
};

/// The repair of the diagnostic at `index` of the tree's list. None if the diagnostic does not concern
/// quotes, or if the text does not show what is right. Reads a few thousand units around the problem, or up
/// to the next `<` if that is farther.
std::optional<Repair> repair(const DocumentTree& tree, std::size_t index);

/// The edits of all repairs of quotes. A problem before the `end` of an earlier repair is skipped. Takes time
/// linear in the text.
std::vector<TextEdit> edits(const DocumentTree& tree);

} // namespace QuoteRepair
