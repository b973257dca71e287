#pragma once

#include "SourceText.h"

#include <string>

/// How a document is indented: by a number of spaces or by tabs.
class IndentStyle {
public:
    /// Four spaces.
    constexpr IndentStyle() = default;

    /// `width` spaces, at least one.
    static constexpr IndentStyle spaces(int width) { return IndentStyle(width); }
    static constexpr IndentStyle tabs() { return IndentStyle(tabsWidth); }

    /// The style of the first `maxLines` lines of the text: tabs if more lines start with a tab than with a
    /// space, otherwise as many spaces as the most frequent difference between the indentations of two
    /// consecutive lines, the smallest of several equally frequent ones. Differences of more than eight
    /// spaces do not count. Four spaces if there is none.
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
