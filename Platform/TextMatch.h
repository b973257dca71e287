#pragma once

#include "SourceRange.h"

#include <cstdint>
#include <functional>
#include <span>

/// A match and then the groups that it captured, a group without part in it being empty at its start. Text
/// that is not a regular expression captures no groups.
using MatchGroups = std::span<const SourceRange>;

/// Takes a match and answers whether it wants the next one.
using MatchVisitor = std::function<bool(MatchGroups)>;

/// How a search ended, and where it would go on.
struct SearchEnd {
    enum class Reason : std::uint8_t {
        done,      ///< All matches were visited.
        stopped,   ///< The visitor had enough, or the token asked for it.
        tooCostly, ///< A regular expression took too many steps.
        noMemory,  ///< The memory was too short.
    };

    Reason reason = Reason::done;
    std::int64_t next = 0; ///< Where the next match may start; may lie beyond the text.
};
