#include "KeptPlace.h"

#include "UnitScan.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

namespace {

constexpr Offset reach = 256 * 1024; ///< Units on each side of the place that are compared.
constexpr Offset longestLine = 256;  ///< Of a longer line so much is looked for.

/// The position in `after` that has as many units other than white space before it as `before` holds; nothing
/// if they differ in those.
std::optional<std::size_t> sameTextEnd(std::u16string_view before, std::u16string_view after) {
    std::size_t at = 0;
    for (const char16_t unit : before) {
        if (UnitScan::isWhitespace(unit)) {
            continue;
        }
        while (at < after.size() && UnitScan::isWhitespace(after[at])) {
            ++at;
        }
        if (at == after.size() || after[at] != unit) {
            return std::nullopt;
        }
        ++at;
    }
    return at;
}

/// The same from the ends: the position in `after` that has as many of them behind it.
std::optional<std::size_t> sameTextStart(std::u16string_view before, std::u16string_view after) {
    const std::u16string beforeReversed(before.rbegin(), before.rend());
    const std::u16string afterReversed(after.rbegin(), after.rend());
    const auto end = sameTextEnd(beforeReversed, afterReversed);
    return end ? std::optional(after.size() - *end) : std::nullopt;
}

/// Where in `text` `wanted` stands nearest to `near`.
std::optional<std::size_t> nearest(std::u16string_view wanted, std::u16string_view text, std::size_t near) {
    const std::size_t after = text.find(wanted, near);
    const std::size_t before = text.rfind(wanted, near);
    if (after == std::u16string_view::npos || before == std::u16string_view::npos) {
        const std::size_t only = std::min(after, before);
        return only != std::u16string_view::npos ? std::optional(only) : std::nullopt;
    }
    return after - near < near - before ? after : before;
}

/// Where the line of `at`, or what of it is near, stands in `units` again; then the place in it.
std::optional<std::size_t> sameLine(Offset at, const Rope& before, SourceRange within,
                                    std::u16string_view units, std::size_t near) {
    const SourceRange line = before.lineRange(before.line(at));
    const Offset lower = std::max({line.lower, within.lower, at - std::min(at, longestLine)});
    const Offset upper = std::min({line.upper, within.upper, at + longestLine});
    const std::u16string wanted = before.units({lower, std::max(lower, upper)});
    if (std::ranges::all_of(wanted, UnitScan::isWhitespace)) {
        return std::nullopt;
    }
    const auto found = nearest(wanted, units, std::min(near, units.size()));
    return found ? std::optional(*found + (at - lower)) : std::nullopt;
}

} // namespace

Offset keptPlace(Offset at, const Rope& before, SourceRange replaced, const Rope& units) {
    if (at <= replaced.lower) {
        return at;
    }
    if (at >= replaced.upper) {
        return at - replaced.length() + units.size();
    }
    const Offset fromStart = at - replaced.lower;
    const Offset fromEnd = replaced.upper - at;
    const Offset count = units.size();
    if (fromStart <= reach) {
        const std::u16string start = units.units({0, std::min(count, 2 * reach)});
        if (const auto place = sameTextEnd(before.units({replaced.lower, at}), start)) {
            // White space before the place goes with it.
            const std::size_t next = std::min(start.find_first_not_of(u" \t\r\n", *place), start.size());
            const bool followsSpace = UnitScan::isWhitespace(before.unit(at - 1));
            return replaced.lower + static_cast<Offset>(followsSpace ? next : *place);
        }
    }
    if (fromEnd <= reach) {
        const Offset skipped = count - std::min(count, 2 * reach);
        if (const auto place =
                sameTextStart(before.units({at, replaced.upper}), units.units({skipped, count}))) {
            return replaced.lower + skipped + static_cast<Offset>(*place);
        }
    }
    const Offset first = std::min(count, fromStart - std::min(fromStart, reach));
    const std::u16string around = units.units({first, first + std::min(count - first, 2 * reach)});
    if (const auto place = sameLine(at, before, replaced, around, fromStart - first)) {
        return replaced.lower + first + static_cast<Offset>(*place);
    }
    return replaced.lower + std::min(fromStart, count);
}
