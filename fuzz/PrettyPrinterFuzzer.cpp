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

/// White space that XML takes for text may be all of a text, which printing drops; and line breaks of both
/// kinds may change which kind comes first.
bool mayLoseText(char16_t unit) {
    return unit == u'\r' ||
           (!UnitScan::isWhitespace(unit) && UnicodeProperties::isWhitespace(static_cast<char32_t>(unit)));
}

} // namespace

/// Nothing stops the printer. Without errors only white space changes, and only once. The input is UTF-16
/// when its first byte is odd, else Latin-1.
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
    // A quote left open in a declaration shows only once something follows its `>`.
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
