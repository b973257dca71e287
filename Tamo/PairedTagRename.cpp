#include "PairedTagRename.h"

#include "TagMatcher.h"
#include "UnitScan.h"

#include <algorithm>

namespace {

using PairedTagRename::Names;

/// Whether a `>`, after blanks at most, follows the name of an end tag.
bool isEnded(SourceRange name, const SourceText& in) {
    const std::u16string_view rest = in.units({name.upper, in.count()});
    const auto end = rest.find_first_not_of(u" \t\r\n");
    return end != std::u16string_view::npos && rest[end] == u'>';
}

std::optional<Names> names(const SourceText& in, Offset around) {
    std::optional<SourceRange> partner;
    auto edited = TagMatcher::startTagName(around, in);
    const bool isStartTag = edited.has_value();
    if (isStartTag) {
        partner = TagMatcher::matchingCloseName(edited->lower - 1, in);
    } else if ((edited = TagMatcher::endTagName(around, in))) {
        partner = TagMatcher::matchingOpenName(edited->lower - 2, in);
    }
    if (!partner || !in.equals(*edited, *partner) || !isEnded(isStartTag ? *partner : *edited, in)) {
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
    return renameOn(*found, range, replacement);
}

std::optional<PairedTagRename::Rename> PairedTagRename::renameOn(const Names& names, SourceRange range,
                                                                 std::u16string_view replacement) {
    const auto& [edited, partner] = names;
    if (range.lower < edited.lower || range.upper > edited.upper ||
        !std::ranges::all_of(replacement, UnitScan::isName)) {
        return std::nullopt;
    }
    const TextEdit here{range, std::u16string(replacement)};
    const TextEdit there{range.shifted(std::int64_t{partner.lower} - edited.lower), here.replacement};
    const bool isPartnerFirst = partner.lower < edited.lower;
    const std::int64_t delta = here.delta();
    const auto after = [delta](SourceRange name, bool isFirst) {
        const std::int64_t lower = name.lower + (isFirst ? 0 : delta);
        return SourceRange::at(lower, name.length() + delta);
    };
    const Names renamed{after(edited, !isPartnerFirst), after(partner, isPartnerFirst)};
    const std::int64_t caret = range.lower + std::ssize(replacement) + (isPartnerFirst ? delta : 0);
    return Rename{isPartnerFirst ? std::vector{there, here} : std::vector{here, there},
                  static_cast<Offset>(caret), renamed};
}
