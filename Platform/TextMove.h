#pragma once

#include "TextEdit.h"

#include <string_view>
#include <vector>

/// What it takes to carry a part of a text to another place in it.
struct TextMove {
    std::vector<TextEdit> edits; ///< In the offsets of the text before; none when nothing would move.
    SourceRange moved;           ///< Where the part is afterwards.

    /// Carries `from`, which holds `units`, to `to`.
    TextMove(SourceRange from, std::u16string_view units, Offset to);
};
