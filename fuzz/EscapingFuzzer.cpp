#include "Escaping.h"
#include "GraphemeBreaker.h"
#include "Precondition.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

namespace {

/// Whether an LF or tab has a neighbour that would combine with the reference that replaces it.
bool hasJoiningNeighbour(std::u16string value) {
    for (std::size_t at = 0; at < value.size(); ++at) {
        if (value[at] == u'\n' || value[at] == u'\t') {
            // A neighbour that combines with a letter in its place would also combine with `&` and `;`.
            const char16_t control = std::exchange(value[at], u'a');
            if (!GraphemeBreaker::isBoundary(value, at) || !GraphemeBreaker::isBoundary(value, at + 1)) {
                return true;
            }
            value[at] = control;
        }
    }
    return false;
}

void checkBoundaries(const std::u16string& text) {
    std::size_t at = 0;
    for (const std::u16string_view character : GraphemeBreaker::Characters(text)) {
        const std::size_t next = at + character.size();
        precondition(!character.empty() && GraphemeBreaker::nextBoundary(text, at) == next &&
                         GraphemeBreaker::previousBoundary(text, next) == at,
                     "characters are the same in both directions");
        at = next;
    }
    precondition(at == text.size(), "characters make up the text");
}

} // namespace

/// Unescaping reverses escaping and never makes a text longer. The input is taken as UTF-16.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::u16string text(size / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), data, text.size() * sizeof(char16_t));
    precondition(Escaping::unescape(text).size() <= text.size(), "unescaping never lengthens");
    precondition(Escaping::unescape(Escaping::escapeText(text)) == text, "text reads back");
    const bool readsBack = !hasJoiningNeighbour(text);
    for (const char16_t quote : {u'"', u'\''}) {
        const std::u16string escaped = Escaping::escapeAttribute(text, quote);
        precondition(!readsBack || Escaping::unescape(escaped) == text, "a value reads back");
    }
    checkBoundaries(text);
    return 0;
}
