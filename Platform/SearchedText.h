#pragma once

#include "Rope.h"

#include <string_view>

/// A version of a text as searches read it. Used by one thread at a time.
class SearchedText {
public:
    explicit SearchedText(Rope text) : m_rope(std::move(text)) {}

    const Rope& rope() const { return m_rope; }

    /// What stands for a lone surrogate in `wellFormed`.
    static constexpr char16_t substitute = 0xFFFF;

    /// All units in one array, each lone surrogate replaced; put together when first asked for, in time and
    /// memory that the text's size sets unless it already stands in one array and is well formed. Borrowed
    /// from this object.
    std::u16string_view wellFormed();

private:
    Rope m_rope;
    SourceText m_wellFormed;
    bool m_isReady = false;
};
