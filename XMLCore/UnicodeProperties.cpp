#include "UnicodeProperties.h"

#include "UTF16.h"

#include <algorithm>
#include <iterator>

bool UnicodeProperties::isWhitespace(char32_t scalar) {
    return std::ranges::any_of(Tables::whiteSpace, [scalar](const char32_t(&run)[2]) {
        return run[0] <= scalar && scalar <= run[1];
    });
}

bool UnicodeProperties::isWhitespace(std::u16string_view character) {
    return !character.empty() &&
           isWhitespace(UTF16::scalarAt(character.data(), character.data() + character.size()));
}
