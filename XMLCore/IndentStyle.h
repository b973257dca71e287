#pragma once

#include "SourceText.h"

#include <string>

/// The unit of indentation of a document.
class IndentStyle {
public:
    /// Four spaces.
    constexpr IndentStyle() = default;

    static constexpr IndentStyle spaces(int width) { return IndentStyle(width); }
    static constexpr IndentStyle tabs() { return IndentStyle(tabsWidth); }

    /// What the first `maxLines` lines of the text use, four spaces when they tell nothing: tabs when more
    /// lines start with a tab than with spaces, else the commonest step from one line's width to the next,
    /// the smaller of two equally common ones.
    static IndentStyle detect(const SourceText& in, int maxLines);

    constexpr bool usesTabs() const { return m_width == tabsWidth; }
    /// The number of spaces; 0 for tabs.
    constexpr int width() const { return usesTabs() ? 0 : m_width; }

    /// One level of indentation, as text.
    std::u16string unit() const;

    constexpr bool operator==(const IndentStyle&) const = default;

private:
    static constexpr int tabsWidth = -1;

    explicit constexpr IndentStyle(int width) : m_width(width) {}

    int m_width = 4;
};

template <>
struct std::hash<IndentStyle> {
    std::size_t operator()(IndentStyle style) const noexcept {
        return hashOf(style.usesTabs(), style.width());
    }
};
