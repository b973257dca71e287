#include "Precondition.h"
#include "PrettyPrinter.h"
#include "TreeParser.h"
#include "UnicodeProperties.h"
#include "UnitScan.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace {

std::u16string formatted(const std::u16string& text) {
    return PrettyPrinter::format(TreeParser::parse(SourceText(text)), IndentStyle::spaces(2)).replacement;
}

std::u16string minified(const std::u16string& text) {
    return PrettyPrinter::minify(TreeParser::parse(SourceText(text))).replacement;
}

std::u16string withoutSpace(std::u16string text) {
    std::erase_if(text, UnitScan::isWhitespace);
    return text;
}

/// Whether a text with this unit is left out of the checks of what printing changes. White space other than
/// XML's may be a whole text, which the printer drops. With both kinds of line breaks, formatting may change
/// which kind comes first.
bool mayLoseText(char16_t unit) {
    return unit == u'\r' ||
           (!UnitScan::isWhitespace(unit) && UnicodeProperties::isWhitespace(static_cast<char32_t>(unit)));
}

} // namespace

/// The printer works for any input. Without errors it changes only white space, and formatting again changes
/// nothing. The input is UTF-16 if its first byte is odd, otherwise Latin-1.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    std::u16string text(data + 1, data + size);
    if (data[0] % 2 == 1) {
        text.resize((size - 1) / sizeof(char16_t));
        std::memcpy(text.data(), data + 1, text.size() * sizeof(char16_t));
    }
    const std::u16string lines = formatted(text);
    const std::u16string line = minified(text);
    // An open quote in a declaration becomes an error only if something follows the `>` of the declaration.
    const bool hasErrors = TreeParser::parse(SourceText(text)).hasErrors() ||
                           TreeParser::parse(SourceText(text + u"\n")).hasErrors();
    if (!hasErrors && std::ranges::none_of(text, mayLoseText)) {
        precondition(withoutSpace(lines) == withoutSpace(text), "formatting changes nothing but white space");
        precondition(formatted(lines) == lines, "formatting again changes nothing");
        precondition(minified(lines) == line, "formatting before minifying changes nothing");
        precondition(minified(line) == line, "minifying again changes nothing");
    }
    return 0;
}
