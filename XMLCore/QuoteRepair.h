#pragma once

#include "DocumentTree.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// Mends the quotes of attribute values where the text around them shows which one is missing or what is too
/// much.
///
/// | damaged             | mended                 |
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
    Offset end = 0; ///< Of the tag as far as the repair sees it; problems up to there go with it.
};

/// The repair of the problem at `index` of the tree's list, if it is one of quotes that can be told. Looks at
/// most a few thousand units around the problem.
std::optional<Repair> repair(const DocumentTree& tree, std::size_t index);

/// The repairs of all problems with quotes, one a tag. Takes time linear in the text.
std::vector<TextEdit> edits(const DocumentTree& tree);

} // namespace QuoteRepair
