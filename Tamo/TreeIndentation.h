#pragma once

#include <cstdint>

/// How far the rows of the outline that are seen at once are indented. Ordinary documents have one step a
/// level. Where the deepest of these rows would leave no room for its label, all of them move to the left as
/// far as the shallowest one allows; if that is not enough, the steps become smaller.
struct TreeIndentation {
    static constexpr int fullStep = 16;

    std::uint32_t base = 0; ///< The depth at the left edge.
    double step = fullStep; ///< Pixels a level.

    /// For rows from `shallowest` to `deepest`, none indented by more than `room` pixels.
    static TreeIndentation fitting(std::uint32_t shallowest, std::uint32_t deepest, int room);

    /// In pixels, for a row of that depth, which is not above `base`.
    int pixels(std::uint32_t depth) const { return static_cast<int>((depth - base) * step); }

    bool operator==(const TreeIndentation&) const = default;
};
