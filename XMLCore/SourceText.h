#pragma once

#include "SourceRange.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

/// A document's text as an immutable array of UTF-16 units. Every unit is kept as it is, including lone
/// surrogates, NUL and CR. Copying is cheap, because copies share the units. May be read from any thread.
///
///
/// Ranges and offsets count units of this text. The program aborts if one reaches beyond the text, unless the
/// operation says otherwise.
class SourceText {
public:
    SourceText() = default;

    /// Copies `units`. Aborts if there are more than 4294967295.
    explicit SourceText(std::u16string_view units);

    /// Shares the first `count` units of `storage`, which must not change any more. Aborts if `count` is more
    /// than 4294967295.
    SourceText(std::shared_ptr<const char16_t[]> storage, std::size_t count);

    /// All units, or those of `range`. The view is valid as long as this text or a copy of it exists.
    std::u16string_view units() const { return {m_storage.get(), m_count}; }
    std::u16string_view units(SourceRange range) const;

    /// The shared storage of the units, for callers that keep a part of it without copying.
    const std::shared_ptr<const char16_t[]>& storage() const { return m_storage; }

    Offset count() const { return static_cast<Offset>(m_count); }
    SourceRange fullRange() const { return {0, static_cast<std::int64_t>(m_count)}; }

    /// The units as text for display, with each lone surrogate replaced by U+FFFD.
    std::u16string string() const;
    std::u16string string(SourceRange range) const;

    /// Whether every unit of `range` is a space, tab, LF or CR; true for an empty range.
    bool isWhitespace(SourceRange range) const;

    /// Whether the text from `at` on starts with `prefix`; false if `at` is beyond the text.
    bool hasPrefix(std::u16string_view prefix, Offset at) const;

    /// Whether both ranges, or the range and the string, have the same units.
    bool equals(SourceRange first, SourceRange second) const;
    bool equals(SourceRange range, std::u16string_view string) const;

    /// The offset just after the last LF before `at`, or 0. An offset beyond the text counts as its end.
    Offset lineStart(Offset at) const;

    /// The offset of the first LF from `at` on, or the end of the text; one less if a CR precedes it. A CR
    /// before an LF at `at` itself is ignored. An offset beyond the text counts as its end.
    Offset lineEnd(Offset at) const;

    /// The spaces and tabs at the start of the line that contains the offset `ofLineAt`. An offset beyond the
    /// text counts as its end.
    std::u16string indentation(Offset ofLineAt) const;

    /// "\r\n" if the first LF of the text follows a CR, otherwise "\n".
    std::u16string_view lineEnding() const;

    /// Compares the units; the storage may differ.
    bool operator==(const SourceText& other) const { return units() == other.units(); }

private:
    std::shared_ptr<const char16_t[]> m_storage;
    std::size_t m_count = 0;
};

/// `units` with each lone surrogate replaced by U+FFFD.
std::u16string repaired(std::u16string_view units);
