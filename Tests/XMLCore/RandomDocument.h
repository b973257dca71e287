#pragma once

#include "Random.h"

#include <string>

/// Documents for property tests. They are small but contain everything: nested and empty elements on one line
/// or several, attributes with either quote, references, text, comments, sections, instructions, a
/// declaration.
namespace RandomDocument {

/// A document without any diagnostic. All its line breaks are of one kind, also those inside tags.
std::u16string wellFormed(Random& random);

/// A document with errors that do not depend on the text around them: stray end tags, lone `&` and `<`,
/// repeated attributes, attributes without a value or without quotes, text and further elements outside the
/// root, words in end tags.
std::u16string faulty(Random& random);

/// A `faulty` document, or tags in any order, changed at random in a few places.
std::u16string broken(Random& random);

} // namespace RandomDocument
