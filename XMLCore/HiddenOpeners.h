#pragma once

#include "DocumentTree.h"
#include "SourceText.h"

/// Hides openers that would mislead `TagMatcher`. `TagMatcher` reads the text without a tree, so it takes the
/// nearest `<!--`, `<![CDATA[` and `<?` before a caret for openers, even inside another construct, as in
/// `<![CDATA[<!--]]>`. A tree shows which of them are not openers.
namespace HiddenOpeners {

/// A tree, and the part of its text that is the same as in the current text.
struct Knowledge {
    const DocumentTree& tree;
    Offset start = 0; ///< The offset in the tree's text at which the current text starts.
    Offset end = 0;   ///< The offset in the tree's text up to which both are the same.
};

/// `text` with another unit in place of the `<` of each opener that is inside another construct and would
/// mislead a search backwards from the offset `before`. No offset changes. Returns `text` itself, without a
/// copy, if there is no such opener.
SourceText masked(const SourceText& text, Offset before, const Knowledge& by);

} // namespace HiddenOpeners
