#pragma once

#include "DocumentTree.h"

#include <QString>

/// What a filter found in a node, as the row of the node shows it. Filters compare as `NodeSearch` does; the
/// empty filter finds nothing.
namespace TreeRowMatch {

/// The start of `text`, at most `limit` units; or, where the first occurrence of `filter` lies further behind
/// than a row is wide, an excerpt of that length from shortly before the occurrence on, after an ellipsis.
QString excerpt(const QString& text, const QString& filter, qsizetype limit);

/// `name="value"` of the first attribute that contains `filter`, the value as an excerpt; empty when the name
/// of the element itself contains it, or no attribute does. Looks at the first attributes only, so that a
/// row is painted in time whatever their number.
QString attribute(const DocumentTree& tree, NodeID element, const QString& filter);

} // namespace TreeRowMatch
