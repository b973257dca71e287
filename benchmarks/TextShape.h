#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// A text that repeats one record; and the shapes that several benchmarks use.
struct TextShape {
    const char* name;
    std::u16string_view opening;
    std::u16string_view record; ///< Repeated until the text is long enough.
    std::u16string_view closing;

    /// A text of this shape with at least `units` units before `closing`.
    std::u16string text(std::size_t units) const {
        std::u16string text(opening);
        while (text.size() < units) {
            text += record;
        }
        text += closing;
        return text;
    }
};

namespace TextShapes {

inline constexpr TextShape tinyElements{"tiny elements", u"<r>", u"<a/>", u"</r>"};

inline constexpr TextShape records{
    "records", u"<table>\n",
    u"  <row id=\"4711\">\n    <name>Ada Lovelace</name>\n    <year>1815</year>\n  </row>\n", u"</table>\n"};

inline constexpr TextShape attributes{
    "attributes", u"<svg>\n",
    u"  <rect x=\"10\" y=\"20\" width=\"300\" height=\"400\" rx=\"5\" class=\"box wide\" id=\"r1\"/>\n",
    u"</svg>\n"};

inline constexpr TextShape prose{
    "prose", u"<book>\n",
    u"<para>It was the best of times, it was the worst of times, it was the age of <em>wisdom</em>, it was "
    u"the age of foolishness, it was the epoch of belief &amp; it was the epoch of incredulity, it was the "
    u"season of Light, it was the season of Darkness.</para>\n",
    u"</book>\n"};

inline constexpr TextShape nested{"nested", u"", u"<level>\n", u""};

} // namespace TextShapes
