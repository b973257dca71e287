#pragma once

#include "Random.h"

#include <string>

/// Documents for property tests, small but with everything in them: nested and empty elements on one line or
/// several, attributes of either quote, references, text, comments, sections, instructions, a declaration.
namespace RandomDocument {

/// Without any diagnostic; either line break throughout, also between the tags of a line.
std::u16string wellFormed(Random& random);

/// With errors that stay where they are whatever happens around them: stray end tags, lone `&` and `<`,
/// attributes twice, without a value or its quotes, text and more elements outside the root, words in end
/// tags.
std::u16string faulty(Random& random);

/// `faulty` or tags in any order, then damaged at a few places.
std::u16string broken(Random& random);

} // namespace RandomDocument
