#pragma once

#include "XMLCharacters.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

/// Looks over a text at memory speed for the few units that the standards have something to say about
/// wherever they stand: what no document may hold, `&`, and `]` before another.
class TextWatch {
public:
    TextWatch(std::u16string_view units, XMLVersion version);

    /// The first such unit that `next` has not returned yet; `end` when there is none before it. `end` must
    /// not go back.
    std::size_t next(std::size_t end);

private:
    static constexpr std::size_t blockLength = 64;

    bool isWatched(std::size_t at) const;
    void loadCandidates(std::size_t end);

    std::u16string_view m_units;
    XMLVersion m_version;
    std::size_t m_block = 0;        ///< Where the candidates start.
    std::size_t m_loaded = 0;       ///< Up to where the text was looked at.
    std::uint64_t m_candidates = 0; ///< A bit a unit, from `m_block` on, of those to be looked at closer.
};
