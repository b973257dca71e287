#include "MarkedText.h"

MarkedText::MarkedText(std::u16string_view marked) {
    std::u16string plain(marked);
    const std::size_t lower = plain.find(u'|');
    precondition(lower != std::u16string::npos, "a marked text holds a mark");
    plain.erase(lower, 1);
    std::size_t upper = plain.find(u'|', lower);
    if (upper == std::u16string::npos) {
        upper = lower;
    } else {
        plain.erase(upper, 1);
    }
    selection = {static_cast<std::int64_t>(lower), static_cast<std::int64_t>(upper)};
    text = SourceText(plain);
}

std::u16string marked(std::u16string text, SourceRange selection) {
    text.insert(selection.upper, 1, u'|');
    return selection.isEmpty() ? text : text.insert(selection.lower, 1, u'|');
}

std::u16string marked(const SourceText& text, std::span<const TextEdit> edits, SourceRange selection) {
    return marked(TextEdit::apply(edits, text.units()), selection);
}
