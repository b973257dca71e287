#pragma once

#include "StandardsCheck.h"

#include <string>
#include <string_view>
#include <vector>

/// A text with what the parser and the checks say of it.
struct CheckedText {
    explicit CheckedText(std::u16string_view units);

    /// The ranges of all errors of the parser and of all violations, in order of place.
    std::vector<SourceRange> ranges() const;

    /// What is said and where, for messages of failed tests: "3..<4 Char [2]" a line.
    std::string description() const;

    DocumentTree tree;
    StandardsCheck::Findings findings;
};

/// A text in which ⟦ and ⟧ mark a range, as tests write it.
struct MarkedRange {
    explicit MarkedRange(std::u16string_view marked);

    std::u16string text;
    SourceRange range;
};
