#pragma once

#include "Bytes.h"
#include "SourceText.h"

#include <cstddef>
#include <expected>
#include <optional>
#include <stop_token>
#include <string_view>

/// Why bytes are no text of an encoding.
struct DecodeFailure {
    enum class Kind : std::uint8_t {
        illegal, ///< An illegal or truncated sequence.
        tooLong, ///< More than 4294967295 units.
        stopped, ///< It was asked to stop before it knew.
    };

    Kind kind = Kind::illegal;
    std::size_t offset = 0; ///< Of the first byte of the illegal sequence; 0 when the text is too long.

    bool operator==(const DecodeFailure&) const = default;
};

/// A way to write text as bytes, known by the canonical name of its converter in ICU. A cheap value.
///
/// No encoding here knows of byte-order marks: U+FEFF is a character like others, at the start too, and none
/// is added. `TextEncoder` is the way back from text to bytes.
class StringEncoding {
public:
    /// The encodings with paths of their own; every other one is ICU's.
    enum class Family : std::uint8_t { utf8, utf16LittleEndian, utf16BigEndian, latin1, converter };

    constexpr StringEncoding() : StringEncoding(utf8()) {}

    static constexpr StringEncoding utf8() { return {Family::utf8, "UTF-8"}; }
    static constexpr StringEncoding utf16LittleEndian() { return {Family::utf16LittleEndian, "UTF-16LE"}; }
    static constexpr StringEncoding utf16BigEndian() { return {Family::utf16BigEndian, "UTF-16BE"}; }
    static constexpr StringEncoding latin1() { return {Family::latin1, "ISO-8859-1"}; }

    /// The encoding that a document means by `name`, an IANA name or another one in use, whatever its case,
    /// hyphens and underscores: `Shift_JIS`, `utf8`, `ISO8859-1`. For a character set whose name is commonly
    /// put on text of a larger one, the larger one. Nothing for an unknown name.
    static std::optional<StringEncoding> named(std::string_view name);

    Family family() const { return m_family; }

    /// The canonical name of the converter, such as "windows-949-2000"; ends with a NUL.
    std::string_view converterName() const { return m_name; }

    /// The name to declare the encoding by: the IANA name preferred in documents, or, where there is none,
    /// the one most in use.
    std::string_view declaredName() const;

    /// Whether this is UTF-16 that leaves the byte order to a mark.
    bool isPlainUTF16() const { return m_name == plainUTF16; }

    /// The text that `bytes` are. Strict: fails at the first sequence that the encoding does not know, be it
    /// only a lone surrogate; `stopped` soon after a request to stop.
    std::expected<SourceText, DecodeFailure> decode(Bytes bytes, const std::stop_token& stop = {}) const;

    /// Of so many bytes at most each unit of a text is made. Nothing for an encoding in which any number of
    /// bytes may make no unit, as one that shifts between sets of characters.
    std::optional<unsigned> mostBytesPerUnit() const;

    bool operator==(const StringEncoding& other) const { return m_name == other.m_name; }

private:
    static constexpr std::string_view plainUTF16 = "UTF-16";

    /// `name` must last as long as the program.
    constexpr StringEncoding(Family family, std::string_view name) : m_name(name), m_family(family) {}

    std::string_view m_name;
    Family m_family = Family::utf8;
};
