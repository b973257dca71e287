#pragma once

#include "SourceRange.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

/// A document's text as an immutable array of UTF-16 units, every unit as it is: lone surrogates, NUL and
/// CR included. A cheap value: copies share the units. May be read from any thread.
///
/// Every range and offset counts units of this text; one that reaches beyond it stops the program unless
/// the operation says otherwise.
class SourceText {
public:
    SourceText() = default;

    /// Copies `units`. Stops the program when they are more than 4294967295.
    explicit SourceText(std::u16string_view units);

    /// Shares the first `count` units of `storage`, which nobody may write from now on.
    SourceText(std::shared_ptr<const char16_t[]> storage, std::size_t count);

    /// All units. The view is good as long as this value or a copy of it lives.
    std::u16string_view units() const { return {m_storage.get(), m_count}; }
    std::u16string_view units(SourceRange range) const;

    /// The shared storage of the units, for those who keep a part of it without copying.
    const std::shared_ptr<const char16_t[]>& storage() const { return m_storage; }

    Offset count() const { return static_cast<Offset>(m_count); }
    SourceRange fullRange() const { return {0, static_cast<std::int64_t>(m_count)}; }

    /// The units as text to show: each lone surrogate replaced by U+FFFD.
    std::u16string string() const;
    std::u16string string(SourceRange range) const;

    /// Whether every unit of `range` is a space, tab, LF or CR; true for an empty range.
    bool isWhitespace(SourceRange range) const;

    /// Whether the units of `prefix` stand at `at`; false when the text ends first.
    bool hasPrefix(std::u16string_view prefix, Offset at) const;

    bool equals(SourceRange first, SourceRange second) const;
    bool equals(SourceRange range, std::u16string_view string) const;

    /// The offset just after the nearest LF before `at`, or 0. An offset beyond the text counts as its end.
    Offset lineStart(Offset at) const;

    /// The offset of the next LF from `at` on, or the end of the text; one less when a CR stands before that
    /// end (before an LF that stands at `at` itself it does not count).
    Offset lineEnd(Offset at) const;

    /// The spaces and tabs at the start of the line that contains `ofLineAt`.
    std::u16string indentation(Offset ofLineAt) const;

    /// "\r\n" when the first LF of the text follows a CR, otherwise "\n".
    std::u16string_view lineEnding() const;

    /// The same units, wherever they are stored.
    bool operator==(const SourceText& other) const { return units() == other.units(); }

private:
    std::shared_ptr<const char16_t[]> m_storage;
    std::size_t m_count = 0;
};

/// `units` with each lone surrogate replaced by U+FFFD.
std::u16string repaired(std::u16string_view units);
