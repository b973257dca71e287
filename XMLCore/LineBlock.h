#pragma once

#include "SourceText.h"
#include "TextEdit.h"

#include <optional>
#include <string_view>
#include <vector>

/// What is done to whole lines. The lines of a selection go from that of its start to that of its last unit:
/// one that ends at the start of a line leaves that line out. A caret has the line that it is on.
namespace LineBlock {

/// Edits, and what is selected after them.
struct Change {
    std::vector<TextEdit> edits;
    SourceRange selection;

    bool operator==(const Change&) const = default;
};

/// The lines of `selection`, without the line break of the last.
SourceRange lines(const SourceText& in, SourceRange selection);

/// Every line starts with one `unit` more; empty ones stay as they are unless the caret is there. None when
/// nothing changes.
std::optional<Change> indent(const SourceText& in, SourceRange selection, std::u16string_view unit);

/// Every line loses the tab, or up to as many spaces as `unit` has characters, that it starts with. None when
/// nothing changes.
std::optional<Change> outdent(const SourceText& in, SourceRange selection, std::u16string_view unit);

/// See `TypingAssistant::toggleComment`.
std::optional<Change> toggleComment(const SourceText& in, SourceRange selection);

} // namespace LineBlock
