#include "Precondition.h"
#include "TagMatcher.h"

#include <cstdint>
#include <cstring>
#include <string>

/// The start tag that is found for an end tag has this end tag as its match, and returned names are at the
/// caret or in an end tag. The input is taken as UTF-16.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::u16string units(size / sizeof(char16_t), u'\0');
    std::memcpy(units.data(), data, units.size() * sizeof(char16_t));
    const SourceText text(units);
    for (Offset at = 0; at <= text.count(); ++at) {
        const bool isInTag = TagMatcher::context(at, text) == TagMatcher::Context::tag;
        precondition(isInTag || !TagMatcher::openTagName(at, text), "only tags are closed");
        const auto unclosed = TagMatcher::unclosedElement(at, text);
        precondition(!unclosed || !unclosed->empty(), "an element has a name");
        if (const auto name = TagMatcher::startTagName(at, text)) {
            precondition(name->lower <= at && at <= name->upper, "the name is around the caret");
        }
        if (const auto open = TagMatcher::matchingOpenName(at, text)) {
            const auto close = TagMatcher::matchingCloseName(open->lower - 1, text);
            precondition(close && close->lower == at + 2, "tags match in both directions");
        }
        if (const auto close = TagMatcher::matchingCloseName(at, text)) {
            precondition(TagMatcher::endTagName(close->lower, text) == close, "the name is in an end tag");
        }
    }
    return 0;
}
