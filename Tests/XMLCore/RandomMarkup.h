#pragma once

#include "Random.h"

#include <cstddef>
#include <string>
#include <string_view>

/// Random texts for the parser, from well-formed documents to random delimiters.
class RandomMarkup {
public:
    explicit RandomMarkup(Random& random) : m_random(random) {}

    /// A well-formed document of up to a few thousand units.
    std::u16string document();

    /// Start and end tags of a few names in any order; tens of elements are open at a time.
    std::u16string tagSoup();

    /// Start tags with up to a hundred attributes, many of them repeated.
    std::u16string attributeSoup();

    /// Delimiters, names, quotes and unusual units in any order.
    std::u16string pieces();

    /// Inserts, deletes, replaces or repeats some units at a random offset.
    void damage(std::u16string& text);

private:
    bool oneIn(std::size_t chances) { return m_random.below(chances) == 0; }
    std::u16string_view piece();
    std::u16string name();
    std::u16string_view fewName();
    std::u16string blank();
    std::u16string content();
    std::u16string value();
    std::u16string attribute();
    std::u16string leaf();

    Random& m_random;
};
