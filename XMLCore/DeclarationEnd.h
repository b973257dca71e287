#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

/// Finds the end of a `<!` declaration: the first `>` outside quotes and square brackets.
namespace DeclarationEnd {

/// The constructs inside a declaration that are skipped, so that a `>`, a quotation mark or a bracket in them
/// does not count.
enum class Skipping : std::uint8_t {
    quotesOnly,             ///< The strict rule: a quotation mark in a comment opens a quoted string too.
    commentsAndInstructions ///< Also comments and instructions inside brackets.
};

/// The offset just after the `>` that ends the declaration; none if there is none before `end`. `from` is an
/// offset in the declaration, after its `<!` and before any quote or bracket. Offsets count UTF-16 units of
/// `units`. Takes time linear in the units that are read.
std::optional<std::ptrdiff_t> find(const char16_t* units, std::ptrdiff_t from, std::ptrdiff_t end,
                                   Skipping skipping);

} // namespace DeclarationEnd
