#include "PairedTagRename.h"

#include "TagMatcher.h"
#include "UnitScan.h"

#include <algorithm>

namespace {

/// The names of a tag and of its partner, the same units.
struct Names {
    SourceRange edited;
    SourceRange partner;
};

std::optional<Names> names(const SourceText& in, Offset around) {
    std::optional<SourceRange> partner;
    auto edited = TagMatcher::startTagName(around, in);
    if (edited) {
        partner = TagMatcher::matchingCloseName(edited->lower - 1, in);
    } else if ((edited = TagMatcher::endTagName(around, in))) {
        partner = TagMatcher::matchingOpenName(edited->lower - 2, in);
    }
    if (!partner || !in.equals(*edited, *partner)) {
        return std::nullopt;
    }
    return Names{*edited, *partner};
}

} // namespace

bool PairedTagRename::mayApply(const Rope& to, SourceRange range, std::u16string_view replacement) {
    if (range.length() > maximumName || !std::ranges::all_of(replacement, UnitScan::isName)) {
        return false;
    }
    constexpr Offset opener = 2; // As long as `</`.
    const Offset lower = range.lower - std::min(range.lower, maximumName + opener);
    const Offset upper = range.upper + std::min<Offset>(1, to.size() - range.upper);
    const std::u16string near = to.units({lower, upper});
    const auto caret = near.begin() + (range.lower - lower);
    const auto start =
        std::find_if_not(std::make_reverse_iterator(caret), near.rend(), UnitScan::isName).base();
    const std::u16string_view before(near.begin(), start);
    return (before.ends_with(u'<') || before.ends_with(u"</")) && start != near.end() &&
           UnitScan::isNameStart(*start) && std::all_of(caret, caret + range.length(), UnitScan::isName);
}

std::optional<PairedTagRename::Rename> PairedTagRename::rename(const SourceText& in, SourceRange range,
                                                               std::u16string_view replacement) {
    if (!std::ranges::all_of(replacement, UnitScan::isName)) {
        return std::nullopt;
    }
    const auto found = names(in, range.lower);
    // What looks like a tag in a comment is none.
    if (!found || range.upper > found->edited.upper || found->edited.length() > maximumName ||
        TagMatcher::context(range.lower, in) != TagMatcher::Context::tag) {
        return std::nullopt;
    }
    const auto& [edited, partner] = *found;
    const TextEdit here{range, std::u16string(replacement)};
    const TextEdit there{range.shifted(std::int64_t{partner.lower} - edited.lower), here.replacement};
    const bool isPartnerFirst = partner.lower < edited.lower;
    const std::int64_t caret =
        range.lower + std::ssize(replacement) + (isPartnerFirst ? here.delta() : std::int64_t{0});
    return Rename{isPartnerFirst ? std::vector{there, here} : std::vector{here, there},
                  static_cast<Offset>(caret)};
}
