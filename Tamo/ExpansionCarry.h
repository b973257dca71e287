#pragma once

#include "NodeCarry.h"
#include "NodePathSet.h"

#include <cstdint>
#include <vector>

/// What is expanded, carried from one tree to the next.
///
/// Time is linear in the paths, in the children of the nodes that they lead through, and in what was
/// replaced.
namespace ExpansionCarry {

/// Expanded elements that the tree does not have at the moment: what follows a comment that is just being
/// typed, or what was deleted and may be put back. They are expanded again when they come back.
struct Absent {
    struct Hidden {
        Offset name; ///< Where the name stands in the text of the tree.
        std::uint64_t fingerprint;
    };
    std::vector<Hidden> hidden;         ///< Their text is still there.
    std::vector<std::uint64_t> deleted; ///< Fingerprints, in the order in which they went; not for ever.
};

struct Expansion {
    NodePathSet expanded;
    Absent absent;
};

/// What is expanded in the later tree of `nodes`. An element that is put around an expanded one is expanded.
Expansion carried(const NodePathSet& expanded, const Absent& absent, NodeCarry& nodes);

} // namespace ExpansionCarry
