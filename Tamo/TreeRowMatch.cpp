#include "TreeRowMatch.h"

#include "NodeSearch.h"
#include "ShownText.h"
#include "StringUnits.h"

#include <algorithm>

namespace {

constexpr qsizetype alwaysSeen = 24;  ///< Units at the start of a label that a narrow row shows too.
constexpr qsizetype shownBefore = 12; ///< Units of an excerpt before what was found.
constexpr qsizetype longestValue = 60;
constexpr Offset longestName = 200;
constexpr Offset longestSearched = 65'536; ///< Units of attributes that are looked at for one row.

bool occurs(const QString& filter, std::u16string_view in) {
    return !NodeSearch::occurrences(unitsOf(filter), in, 1).empty();
}

} // namespace

QString TreeRowMatch::excerpt(const QString& text, const QString& filter, qsizetype limit) {
    const auto found = NodeSearch::occurrences(unitsOf(filter), unitsOf(text), 1);
    if (found.empty() || found.front().upper <= alwaysSeen) {
        return ShownText::shortened(text, limit);
    }
    qsizetype start = std::max<qsizetype>(0, qsizetype(found.front().lower) - shownBefore);
    // No half of a character.
    if (start < text.size() && text[start].isLowSurrogate()) {
        ++start;
    }
    return start == 0 ? ShownText::shortened(text, limit)
                      : u'…' + ShownText::shortened(QStringView(text).sliced(start), limit - 1);
}

QString TreeRowMatch::attribute(const DocumentTree& tree, NodeID element, const QString& filter) {
    if (filter.isEmpty() || occurs(filter, tree.text.units(tree[element].nameRange))) {
        return {};
    }
    Offset searched = 0;
    for (const AttributeSpan& attribute : tree.attributesOf(element)) {
        searched += attribute.range.length();
        if (searched > longestSearched) {
            break;
        }
        if (occurs(filter, tree.text.units(attribute.name)) ||
            occurs(filter, tree.text.units(attribute.value))) {
            const QString value = QString::fromStdU16String(tree.text.string(attribute.value));
            return QStringLiteral("%1=\"%2\"")
                .arg(ShownText::start(attribute.name, longestName, tree.text),
                     excerpt(value, filter, longestValue));
        }
    }
    return {};
}
