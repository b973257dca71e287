#include "EncodingPreview.h"

#include "DisplayText.h"
#include "EncodingChoice.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr std::size_t mostLines = 40;
constexpr std::size_t longestLine = 400;
/// A character that the start of a file cuts off has fewer bytes than this.
constexpr std::size_t longestCharacter = 8;

QString shownLines(std::u16string_view units) {
    QString shown;
    for (std::size_t line = 0; line < mostLines && !units.empty(); ++line) {
        const std::size_t end = std::min(units.find(u'\n'), units.size());
        std::u16string_view part = units.substr(0, end);
        part.remove_suffix(part.ends_with(u'\r') ? 1 : 0);
        shown += displayText(part.substr(0, longestLine));
        shown += part.size() > longestLine ? QStringLiteral("…\n") : QStringLiteral("\n");
        units.remove_prefix(std::min(end + 1, units.size()));
    }
    return shown;
}

} // namespace

EncodingPreview EncodingPreview::of(const FileStart& start, const StringEncoding& encoding) {
    const Bytes mark = EncodingChoice{encoding, EncodingChoice::canHaveMark(encoding)}.bom();
    const bool hasMark = !mark.empty() && stringOf(start.bytes).starts_with(stringOf(mark));
    const std::size_t skipped = hasMark ? mark.size() : 0;
    const Bytes bytes = Bytes(start.bytes).subspan(skipped);
    auto text = encoding.decode(bytes);
    if (text) {
        return {shownLines(text->units()), std::nullopt};
    }
    const std::size_t illegalAt = text.error().offset;
    const bool isCutOff = !start.isWhole && illegalAt + longestCharacter > bytes.size();
    text = encoding.decode(bytes.first(illegalAt));
    return {text ? shownLines(text->units()) : QString(),
            isCutOff ? std::nullopt : std::optional(skipped + illegalAt)};
}
