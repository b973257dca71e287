#pragma once

#include "SourceText.h"
#include "TextSums.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

/// The tree inside a `Rope`: immutable nodes that any number of versions share.
///
/// A part of height 0 holds a chunk of units, one of height `n` a node whose parts have height `n - 1`. A
/// chunk is a stretch of any array, its own or a whole file's. Chunks and nodes are at least half full, but
/// for a node's only part and the root.
struct RopeNode {
    static constexpr std::size_t maximumParts = 32;
    static constexpr std::size_t minimumParts = maximumParts / 2;
    static constexpr std::size_t maximumChunk = 2048;
    static constexpr std::size_t minimumChunk = maximumChunk / 2;

    struct Part {
        TextSums sums;
        std::shared_ptr<const void> content;

        /// The units of a part of height 0; borrowed from the part.
        std::u16string_view units() const {
            return {static_cast<const char16_t*>(content.get()), sums.units};
        }
        /// The node of any other part; borrowed from the part.
        const RopeNode& node() const { return *static_cast<const RopeNode*>(content.get()); }
    };
    using Parts = std::vector<Part>;

    TextSums sums;
    std::uint8_t height = 1; ///< The height of the part that holds this node.
    std::uint8_t count = 0;
    std::array<Part, maximumParts> storage;

    std::span<const Part> parts() const { return {storage.data(), count}; }

    /// The chunks of `text`, which share its units.
    static Parts chunks(const SourceText& text);

    /// The chunks of three stretches one after the other, copied.
    static Parts chunks(std::u16string_view first, std::u16string_view second, std::u16string_view third);

    /// The parts that take the place of `part`, of the given height, when the units of `range`, which lies
    /// inside it, become `units`. None when nothing is left. A single one may be less than half full.
    static Parts replaced(const Part& part, int height, SourceRange range, std::u16string_view units);

    /// The parts, of the greater of the two heights, that hold `first` and then `second`.
    static Parts joined(const Part& first, int firstHeight, const Part& second, int secondHeight);

    /// A copy of `node` whose units are those of `to` from `at` on.
    static std::shared_ptr<const RopeNode> moved(const RopeNode& node, const SourceText& to, Offset at);

    /// The root of a tree over `parts` of the given height; null for none.
    static std::shared_ptr<const RopeNode> root(Parts parts, int height);
};
