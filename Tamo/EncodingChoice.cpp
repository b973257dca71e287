#include "EncodingChoice.h"

#include "TextEncoder.h"
#include "TextEncodingDetector.h"
#include "UTF16.h"
#include "XMLDeclaration.h"

#include <algorithm>
#include <array>

using namespace std::string_view_literals;

namespace {

using Family = StringEncoding::Family;

/// Names of encodings are ASCII; anything else is none.
std::string ascii(std::u16string_view name) {
    std::string bytes;
    for (const char16_t unit : name) {
        bytes += unit > u' ' && unit < 0x7F ? static_cast<char>(unit) : '?';
    }
    return bytes;
}

std::string_view mark(Family family) {
    switch (family) {
    case Family::utf8:
        return "\xEF\xBB\xBF"sv;
    case Family::utf16LittleEndian:
        return "\xFF\xFE"sv;
    case Family::utf16BigEndian:
        return "\xFE\xFF"sv;
    case Family::latin1:
    case Family::converter:
        break;
    }
    return {};
}

} // namespace

bool EncodingChoice::canHaveMark(const StringEncoding& encoding) { return !mark(encoding.family()).empty(); }

bool EncodingChoice::needsMark(const StringEncoding& encoding) {
    return encoding.family() == Family::utf16LittleEndian || encoding.family() == Family::utf16BigEndian;
}

EncodingChoice EncodingChoice::usual(const StringEncoding& encoding) {
    return {encoding, needsMark(encoding)};
}

std::optional<EncodingChoice> EncodingChoice::declared(std::u16string_view name) {
    const auto encoding = StringEncoding::named(ascii(name));
    if (!encoding) {
        return std::nullopt;
    }
    return usual(encoding->isPlainUTF16() ? StringEncoding::utf16LittleEndian() : *encoding);
}

Bytes EncodingChoice::bom() const { return hasMark ? bytesOf(mark(encoding.family())) : Bytes(); }

std::u16string EncodingChoice::name() const {
    // The names with a byte order in them stand for files without a mark.
    const std::string_view name = needsMark(encoding) && hasMark ? "UTF-16"sv : encoding.declaredName();
    return {name.begin(), name.end()};
}

bool EncodingChoice::agrees(std::u16string_view name) const {
    const auto meant = StringEncoding::named(ascii(name));
    return meant && (meant->isPlainUTF16() ? needsMark(encoding) && hasMark : *meant == encoding);
}

bool EncodingChoice::isReadBack(std::u16string_view start) const {
    constexpr std::size_t enough = 256;
    std::string bytes(stringOf(bom()));
    TextEncoder encoder(encoding, [&bytes](Bytes more) { bytes += stringOf(more); });
    start = start.substr(0, enough);
    if (!start.empty() && UTF16::isHighSurrogate(start.back())) {
        start.remove_suffix(1);
    }
    // What cannot be written is not read back either, but that is for the write to tell.
    if (!encoder.append(start) || !encoder.finish()) {
        return true;
    }
    const auto found = TextEncodingDetector::announced(bytesOf(bytes));
    if (!found) {
        return encoding == StringEncoding::utf8() || encoding == StringEncoding::latin1();
    }
    return found->encoding == encoding && stringOf(found->bom) == stringOf(bom());
}

bool EncodingChoice::canBeDeclared() const {
    return isReadBack(XMLDeclaration::declaring(name(), {}, {}).replacement);
}

std::optional<TextEdit> EncodingChoice::declaration(std::u16string_view start,
                                                    std::u16string_view lineEnding) const {
    const auto declaration = XMLDeclaration::of(start);
    const bool isSaid = declaration && declaration->encoding;
    const bool goesWithoutSaying = encoding == StringEncoding::utf8() || (needsMark(encoding) && hasMark);
    const bool isRight =
        isSaid ? agrees(XMLDeclaration::declaredEncoding(start)) : goesWithoutSaying && isReadBack(start);
    return isRight ? std::nullopt : std::optional(XMLDeclaration::declaring(name(), start, lineEnding));
}

std::optional<EncodingConflict> EncodingConflict::of(std::u16string_view start,
                                                     const EncodingChoice& choice) {
    const std::u16string_view declared = XMLDeclaration::declaredEncoding(start);
    if ((declared.empty() || choice.agrees(declared)) && choice.isReadBack(start)) {
        return std::nullopt;
    }
    return EncodingConflict{std::u16string(declared), choice};
}

std::optional<EncodingChoice> EncodingConflict::asDeclared() const {
    return declared.empty() ? EncodingChoice::usual(StringEncoding::utf8())
                            : EncodingChoice::declared(declared);
}

EncodingChoice EncodingConflict::asWritten() const {
    return {choice.encoding, choice.hasMark || EncodingChoice::needsMark(choice.encoding)};
}
