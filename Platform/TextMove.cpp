#include "TextMove.h"

TextMove::TextMove(SourceRange from, std::u16string_view units, Offset to) : moved(from) {
    if (to < from.lower) {
        moved = SourceRange::at(to, from.length());
    } else if (to > from.upper) {
        moved = SourceRange::at(to - from.length(), from.length());
    } else {
        return;
    }
    edits = {TextEdit::deleteRange(from), TextEdit::insert(std::u16string(units), to)};
}
