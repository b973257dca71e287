#include "Converter.h"
#include "Precondition.h"
#include "StringEncoding.h"
#include "TextEncoder.h"
#include "XMLFileDocument.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

std::vector<StringEncoding> availableEncodings() {
    std::vector<StringEncoding> encodings;
    for (int i = 0; i < ucnv_countAvailable(); ++i) {
        encodings.push_back(StringEncoding::named(ucnv_getAvailableName(i)).value());
    }
    return encodings;
}

std::optional<std::u16string> decodedByICU(const StringEncoding& encoding, Bytes bytes) {
    const Converter converter = openConverter(encoding.converterName());
    std::u16string units(bytes.size() + 1, u'\0');
    UErrorCode error = U_ZERO_ERROR;
    const int count =
        ucnv_toUChars(converter.get(), units.data(), static_cast<int>(units.size()),
                      reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()), &error);
    units.resize(U_SUCCESS(error) ? count : 0);
    return U_SUCCESS(error) ? std::optional(units) : std::nullopt;
}

std::expected<std::string, UnencodableCharacter>
encodedInStretches(const SourceText& text, const StringEncoding& encoding, std::size_t length) {
    std::vector<std::u16string_view> stretches;
    for (std::size_t at = 0; at < text.count(); at += length) {
        stretches.push_back(text.units().substr(at, length));
    }
    return encoded(stretches, encoding);
}

/// Decodes, encodes again and compares, if the encoding is one of those with code of their own: the text with
/// that of the converter, the new bytes with the old ones. For all encodings, how the text is cut must not
/// change the bytes.
void checkDecoding(Bytes bytes, const StringEncoding& encoding) {
    const auto text = encoding.decode(bytes);
    const bool hasOwnPath = encoding.family() != StringEncoding::Family::converter;
    if (hasOwnPath) {
        const auto expected = decodedByICU(encoding, bytes);
        precondition(expected.has_value() == text.has_value(), "the same bytes are legal");
        precondition(!text || text->units() == *expected, "they are the same text");
    }
    if (!text) {
        precondition(text.error().offset <= bytes.size(), "the failure lies inside");
        return;
    }
    const auto again = encodedInStretches(*text, encoding, std::max<std::size_t>(1, text->count()));
    precondition(again == encodedInStretches(*text, encoding, 3), "the cuts make no difference");
    if (hasOwnPath) {
        precondition(again && std::ranges::equal(bytesOf(*again), bytes), "the bytes are the same");
    }
}

/// Opens a file of these bytes and saves it without a change.
void checkDocument(Bytes bytes) {
    auto storage = std::make_shared<std::uint8_t[]>(bytes.size());
    std::ranges::copy(bytes, storage.get());
    const auto document = XMLFileDocument::decode({std::move(storage), bytes.size()});
    precondition(document.has_value(), "any bytes open");
    const auto saved = (*document)->encode((*document)->snapshot());
    const bool isLegal = (*document)->encoding().decode(bytes.subspan((*document)->bom().size())).has_value();
    precondition(!isLegal || (saved && std::ranges::equal(bytesOf(*saved), bytes)), "the file is the same");
}

} // namespace

/// The first byte chooses an encoding besides the detected one.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::vector<StringEncoding> encodings = availableEncodings();
    if (size == 0) {
        return 0;
    }
    const Bytes bytes = Bytes(data, size).subspan(1);
    checkDocument(bytes);
    checkDecoding(bytes, encodings[data[0] % encodings.size()]);
    for (const StringEncoding& encoding : {StringEncoding::utf8(), StringEncoding::utf16LittleEndian(),
                                           StringEncoding::utf16BigEndian(), StringEncoding::latin1()}) {
        checkDecoding(bytes, encoding);
    }
    return 0;
}
