#include "LineEndings.h"

#include "LargeArray.h"

#include <cstddef>
#include <limits>
#include <memory>

namespace {

/// How the lines of a text end.
struct Count {
    std::size_t lineFeeds = 0; ///< Alone.
    std::size_t pairs = 0;
};

Count count(const Rope& text) {
    Count count;
    char16_t before = 0;
    for (const std::u16string_view chunk : text.chunks()) {
        for (const char16_t unit : chunk) {
            count.pairs += static_cast<std::size_t>(unit == u'\n' && before == u'\r');
            count.lineFeeds += static_cast<std::size_t>(unit == u'\n' && before != u'\r');
            before = unit;
        }
    }
    return count;
}

} // namespace

std::optional<Rope> LineEndings::converted(const Rope& text, std::u16string_view ending) {
    const bool toPairs = ending == u"\r\n";
    const Count found = count(text);
    const std::size_t size = toPairs ? text.size() + found.lineFeeds : text.size() - found.pairs;
    if ((toPairs ? found.lineFeeds : found.pairs) == 0 || size > std::numeric_limits<Offset>::max()) {
        return std::nullopt;
    }
    const std::shared_ptr<char16_t[]> units = makeLargeArray<char16_t>(size);
    char16_t* to = units.get();
    char16_t before = 0;
    for (const std::u16string_view chunk : text.chunks()) {
        for (const char16_t unit : chunk) {
            if (unit == u'\n' && toPairs && before != u'\r') {
                *to++ = u'\r';
            } else if (unit == u'\n' && !toPairs && before == u'\r') {
                --to;
            }
            *to++ = unit;
            before = unit;
        }
    }
    return Rope(SourceText(units, size));
}
