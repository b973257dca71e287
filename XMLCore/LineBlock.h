#pragma once

#include "SourceText.h"
#include "TextEdit.h"

#include <optional>
#include <string_view>
#include <vector>

/// Commands for whole lines. The lines of a selection are those from the line of its start to the line of its
/// last unit: a selection that ends at the start of a line does not include that line. For a caret it is the
/// line that contains it.
namespace LineBlock {

/// Edits, and the selection in the text after them.
struct Change {
    std::vector<TextEdit> edits;
    SourceRange selection;

    bool operator==(const Change&) const = default;
};

/// The range of the lines of `selection`, without the line break of the last line.
SourceRange lines(const SourceText& in, SourceRange selection);

/// Inserts `unit` at the start of each line. An empty line is left out, unless it is the caret's. None if
/// nothing changes.
std::optional<Change> indent(const SourceText& in, SourceRange selection, std::u16string_view unit);

/// Removes from the start of each line a tab, or its spaces, but no more than `unit` has units. None if
/// nothing changes.
std::optional<Change> outdent(const SourceText& in, SourceRange selection, std::u16string_view unit);

/// See `TypingAssistant::toggleComment`.
std::optional<Change> toggleComment(const SourceText& in, SourceRange selection);

} // namespace LineBlock
