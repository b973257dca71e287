#pragma once

#include "MutationPlanner.h"

#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// Keeps the references in a text or an attribute value that the user edits, as far as the edit leaves them
/// alone: `MutationPlanner` writes the whole anew from what the user reads, and so turns `&#233;` into `é` and
/// the `&name;` of an entity into `&amp;name;`.
namespace KeptReferences {

/// As `MutationPlanner::plan`; where a mutation sets a text or the value of an attribute that is there, the
/// plan replaces only what differs between what is read there before and afterwards. References inside that
/// stretch are written anew.
std::expected<MutationPlanner::Plan, MutationPlanner::Failure> plan(const TreeMutation& mutation,
                                                                    const DocumentTree& in, IndentStyle indent);

/// How a stretch of what is read becomes source.
using Escape = std::function<std::u16string(std::u16string_view)>;

/// The edit of `raw`, which is character data, that makes it read `wanted`; in units of `raw`. Empty where it
/// reads so already. Nothing where only a new text for the whole is certain to read so, as where a new unit
/// would become part of a reference beside it. Takes time linear in both.
std::optional<TextEdit> edit(std::u16string_view raw, std::u16string_view wanted, const Escape& escape);

} // namespace KeptReferences
