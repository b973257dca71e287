#include "TextWatch.h"

#include "Random.h"
#include "UTF16.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

std::vector<std::size_t> watched(std::u16string_view text, XMLVersion version, std::size_t step) {
    TextWatch watch(text, version);
    std::vector<std::size_t> found;
    for (std::size_t end = std::min(step, text.size());; end = std::min(end + step, text.size())) {
        for (std::size_t at = watch.next(end); at < end; at = watch.next(end)) {
            found.push_back(at);
        }
        if (end == text.size()) {
            return found;
        }
    }
}

/// The same, one scalar after the other.
std::vector<std::size_t> expected(std::u16string_view text, XMLVersion version) {
    std::vector<std::size_t> found;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t scalar = UTF16::scalarAt(text.data() + at, text.data() + text.size());
        const bool isBracket = scalar == U']' && text.substr(at, 2) == u"]]";
        if (scalar == U'&' || isBracket || !XMLCharacters::isAllowed(scalar, version)) {
            found.push_back(at);
        }
        at += UTF16::length(scalar);
    }
    return found;
}

TEST(TextWatch, FindsUnitsAtAnyPlaceOfABlock) {
    for (const char16_t unit : {u'\0', u'\x8', u'\xB', u'\xC', u'\xE', u'\x1F', u'&', char16_t(0xD800),
                                char16_t(0xDFFF), char16_t(0xFFFE), char16_t(0xFFFF)}) {
        for (std::size_t at = 0; at < 200; ++at) {
            std::u16string text(200, u'a');
            text[at] = unit;
            EXPECT_EQ(watched(text, XMLVersion::v1_0, 1000), std::vector{at}) << std::hex << int{unit};
        }
    }
}

TEST(TextWatch, LetsEverythingElsePass) {
    std::u16string text;
    for (char32_t unit = 0x20; unit < 0xFFFE; ++unit) {
        if (unit != u'&' && !UTF16::isSurrogate(static_cast<char16_t>(unit))) {
            text.push_back(static_cast<char16_t>(unit));
        }
    }
    EXPECT_EQ(watched(text + u"\t\r\n] ]", XMLVersion::v1_0, 16384), std::vector<std::size_t>());
}

TEST(TextWatch, FindsWhatAWalkOverTheScalarsFinds) {
    constexpr char32_t alphabet[] = {U'a',   U'b',   U' ',   U'é',    U'日',   U'\t', U'\n',
                                     U'&',   U']',   U']',   1,       0x7F,    0x85,  0x90,
                                     0x2028, 0xD800, 0xDC00, 0x1F600, 0x1F600, 0xFFFE};
    Random random;
    for (int round = 0; round < 300; ++round) {
        const std::u16string text = random.text(alphabet, 400);
        for (const XMLVersion version : {XMLVersion::v1_0, XMLVersion::v1_1}) {
            EXPECT_EQ(watched(text, version, 1 + random.below(150)), expected(text, version));
        }
    }
}

} // namespace
