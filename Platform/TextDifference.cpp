#include "TextDifference.h"

#include "UTF16.h"

#include <algorithm>

namespace {

constexpr Offset step = 2048;

/// How many units two texts have in common from their starts on, at most `most`.
Offset commonStart(const Rope& a, const Rope& b, Offset most) {
    for (Offset at = 0; at < most; at += step) {
        const SourceRange range{at, std::min(at + step, most)};
        const std::u16string left = a.units(range);
        const std::u16string right = b.units(range);
        if (left != right) {
            const auto difference = std::ranges::mismatch(left, right).in1;
            return at + static_cast<Offset>(difference - left.begin());
        }
    }
    return most;
}

/// The same from their ends.
Offset commonEnd(const Rope& a, const Rope& b, Offset most) {
    for (Offset done = 0; done < most;) {
        const Offset length = std::min(step, most - done);
        const std::u16string left = a.units({a.size() - done - length, a.size() - done});
        const std::u16string right = b.units({b.size() - done - length, b.size() - done});
        if (left != right) {
            const auto difference = std::mismatch(left.rbegin(), left.rend(), right.rbegin()).first;
            return done + static_cast<Offset>(difference - left.rbegin());
        }
        done += length;
    }
    return most;
}

/// Whether the units before and behind `at` belong together.
bool isInsidePair(const Rope& text, Offset at) {
    if (at == 0 || at >= text.size()) {
        return false;
    }
    const char16_t before = text.unit(at - 1);
    const char16_t after = text.unit(at);
    return (UTF16::isHighSurrogate(before) && UTF16::isLowSurrogate(after)) ||
           (before == u'\r' && after == u'\n');
}

} // namespace

std::optional<TextEdit> textDifference(const Rope& before, const Rope& after) {
    const Offset shorter = std::min(before.size(), after.size());
    Offset start = commonStart(before, after, shorter);
    if (start == shorter && before.size() == after.size()) {
        return std::nullopt;
    }
    Offset end = commonEnd(before, after, shorter - start);
    if (isInsidePair(before, start) || isInsidePair(after, start)) {
        --start;
    }
    if (isInsidePair(before, before.size() - end) || isInsidePair(after, after.size() - end)) {
        --end;
    }
    return TextEdit{{start, before.size() - end}, after.units({start, after.size() - end})};
}
