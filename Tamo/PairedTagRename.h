#pragma once

#include "Rope.h"
#include "TextEdit.h"

#include <optional>
#include <string_view>
#include <vector>

/// Keeps the names in the two tags of an element the same: what is typed into or erased from one is so in the
/// other. A change counts when it lies inside a name, its ends included, when what it puts in consists of
/// name characters or is nothing, when both names were the same before, and when a `>` ends the end tag: one
/// that lost it is about to go. All offsets count units of the text before the change.
namespace PairedTagRename {

/// Longer names are left alone.
inline constexpr Offset maximumName = 1024;

/// Whether replacing `range` may count, as far as the units next to it tell: says no at once where no name of
/// a tag is near, in a text of any size.
bool mayApply(const Rope& to, SourceRange range, std::u16string_view replacement);

/// The name that is changed and that of the other tag, the same units.
struct Names {
    SourceRange edited;
    SourceRange partner;

    bool operator==(const Names&) const = default;
};

struct Rename {
    std::vector<TextEdit> edits; ///< Of the two names, in ascending order.
    Offset caret = 0;            ///< After the replacement, in the text after the edits.
    Names names;                 ///< In the text after the edits.

    bool operator==(const Rename&) const = default;
};

/// The change made in both tags; none when it does not count. Takes time linear in the text at most.
std::optional<Rename> rename(const SourceText& in, SourceRange range, std::u16string_view replacement);

/// The same for names that were renamed right before and are at `names` now, also where they are none any
/// more because they were erased or begin otherwise.
std::optional<Rename> renameOn(const Names& names, SourceRange range, std::u16string_view replacement);

} // namespace PairedTagRename
