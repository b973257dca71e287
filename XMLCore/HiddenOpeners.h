#pragma once

#include "DocumentTree.h"
#include "SourceText.h"

/// `TagMatcher` looks at the text alone, and takes each nearest `<!--`, `<![CDATA[` and `<?` before a caret
/// for an opener, also where it stands inside another construct, as in `<![CDATA[<!--]]>`. A tree knows
/// better.
namespace HiddenOpeners {

/// A tree, and how far it speaks of a text.
struct Knowledge {
    const DocumentTree& tree;
    Offset start = 0; ///< Where the text starts in that of the tree.
    Offset end = 0;   ///< Up to where in the tree's text the two are the same.
};

/// `text` with another unit in place of the `<` of each opener that stands inside another construct and would
/// mislead a look back from `before`. Every offset stays. `text` itself, not copied, when nothing misleads.
SourceText masked(const SourceText& text, Offset before, const Knowledge& by);

} // namespace HiddenOpeners
