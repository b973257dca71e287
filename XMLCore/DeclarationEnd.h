#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

/// Where a `<!` declaration ends: at the first `>` outside quotes and brackets.
namespace DeclarationEnd {

/// What is skipped besides quotes.
enum class Skipping : std::uint8_t {
    quotesOnly,             ///< By the letter: a quotation mark in a comment opens a quote like any other.
    commentsAndInstructions ///< Also those comments and instructions that stand inside brackets.
};

/// Just after the `>` that ends the declaration whose `<!` ends at `from`. Nothing when no `>` before `end`
/// does. Linear in the units that are read.
std::optional<std::ptrdiff_t> find(const char16_t* units, std::ptrdiff_t from, std::ptrdiff_t end,
                                   Skipping skipping);

} // namespace DeclarationEnd
