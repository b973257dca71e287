#include "TextEncodingDetector.h"

#include "UTF8.h"

#include <algorithm>
#include <optional>
#include <string_view>

using namespace std::string_view_literals;

namespace {

struct Mark {
    std::string_view bytes;
    StringEncoding encoding;
};
constexpr Mark marks[]{
    {"\xEF\xBB\xBF"sv, StringEncoding::utf8()},
    {"\xFF\xFE"sv, StringEncoding::utf16LittleEndian()},
    {"\xFE\xFF"sv, StringEncoding::utf16BigEndian()},
};

/// White space of ASCII, and of Latin-1: next line and no-break space.
constexpr bool isSpace(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r') || character == '\x85' ||
           character == '\xA0';
}

constexpr bool isNameCharacter(char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
           (character >= '0' && character <= '9') || character == '.' || character == '_' || character == '-';
}

std::string_view withoutSpaces(std::string_view text) {
    return text.substr(std::ranges::find_if_not(text, isSpace) - text.begin());
}

/// The name in `= "name"`, or nothing when `text` does not start like that. The quotes need not be the same.
std::optional<std::string_view> assignedName(std::string_view text) {
    text = withoutSpaces(text);
    if (!text.starts_with('=')) {
        return std::nullopt;
    }
    text = withoutSpaces(text.substr(1));
    if (!text.starts_with('"') && !text.starts_with('\'')) {
        return std::nullopt;
    }
    text.remove_prefix(1);
    const std::size_t length = std::ranges::find_if_not(text, isNameCharacter) - text.begin();
    const bool isClosed = length > 0 && length < text.size() && (text[length] == '"' || text[length] == '\'');
    return isClosed ? std::optional(text.substr(0, length)) : std::nullopt;
}

/// The first encoding name of an XML declaration at the start of `prefix`.
std::optional<std::string_view> nameDeclared(std::string_view prefix) {
    constexpr std::string_view attribute = "encoding";
    if (!prefix.starts_with("<?xml")) {
        return std::nullopt;
    }
    for (std::size_t at = prefix.find(attribute); at != std::string_view::npos;
         at = prefix.find(attribute, at + 1)) {
        if (const auto name = assignedName(prefix.substr(at + attribute.size()))) {
            return name;
        }
    }
    return std::nullopt;
}

std::optional<StringEncoding> declaredEncoding(Bytes bytes) {
    const auto name = TextEncodingDetector::declaredName(bytes);
    const auto encoding = name ? StringEncoding::named(*name) : std::nullopt;
    return encoding && encoding->isPlainUTF16() ? StringEncoding::utf8() : encoding;
}

bool isUTF8(Bytes bytes, const std::stop_token& stop) {
    constexpr std::size_t pieceLength = std::size_t{1} << 20;
    constexpr std::size_t longestSequence = 4;
    while (!bytes.empty() && !stop.stop_requested()) {
        std::size_t end = std::min(bytes.size(), pieceLength);
        // No sequence is divided: at most three bytes continue one.
        for (std::size_t back = 1; end < bytes.size() && back < longestSequence; ++back) {
            end -= (bytes[end] & 0xC0) == 0x80 ? 1 : 0;
        }
        if (!UTF8::isValid(bytes.first(end))) {
            return false;
        }
        bytes = bytes.subspan(end);
    }
    return true;
}

} // namespace

Detection TextEncodingDetector::detect(Bytes bytes, const std::stop_token& stop) {
    if (const auto known = announced(bytes)) {
        return *known;
    }
    return {isUTF8(bytes, stop) ? StringEncoding::utf8() : StringEncoding::latin1(), {}};
}

std::optional<Detection> TextEncodingDetector::announced(Bytes prefix) {
    for (const Mark& mark : marks) {
        const Bytes start = prefix.first(std::min(prefix.size(), mark.bytes.size()));
        if (stringOf(start) == mark.bytes) {
            return Detection{mark.encoding, start};
        }
    }
    if (const auto declared = declaredEncoding(prefix)) {
        return Detection{*declared, {}};
    }
    return std::nullopt;
}

std::optional<std::string_view> TextEncodingDetector::declaredName(Bytes prefix) {
    constexpr std::size_t longest = 256;
    return nameDeclared(stringOf(prefix.first(std::min(prefix.size(), longest))));
}
