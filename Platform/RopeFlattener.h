#pragma once

#include "Rope.h"

#include <array>
#include <cstddef>
#include <memory>

/// Puts ropes into one array each, for those who read a text in one piece. The arrays are used again once
/// nobody holds a text in them any more: touching fresh memory takes longer than the copy. Used by one thread
/// at a time; the texts go wherever they like.
class RopeFlattener {
public:
    /// The units of `rope`, not copied when they already stand in one array.
    SourceText flattened(const Rope& rope);

    /// Keeps no array any more; the texts keep theirs.
    void forget() { m_buffers = {}; }

    /// Has another flattener take over the arrays that no text is in.
    RopeFlattener takeFree();

private:
    struct Buffer {
        std::shared_ptr<char16_t[]> units;
        std::size_t capacity = 0;
    };

    static bool isFree(const Buffer& buffer);

    /// One for the tree on show and one for the next.
    std::array<Buffer, 2> m_buffers;
};
