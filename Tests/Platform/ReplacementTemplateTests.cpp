#include "ReplacementTemplate.h"

#include <gtest/gtest.h>

namespace {

constexpr auto plain = SearchPattern::Syntax::plain;
constexpr auto regularExpression = SearchPattern::Syntax::regularExpression;

/// What `written` makes of a match "uno-dos" whose groups are "uno", nothing and "dos".
std::u16string made(std::u16string_view written, SearchPattern::Syntax syntax) {
    const Rope text(u"<uno-dos>");
    const SourceRange groups[] = {{1, 8}, {1, 4}, {1, 1}, {5, 8}};
    std::u16string units = u"=";
    ReplacementTemplate(written, syntax).append(units, text, groups);
    return units;
}

} // namespace

TEST(ReplacementTemplate, TakesPlainTextAsItIs) {
    EXPECT_EQ(made(u"x\\1\\n$&", plain), u"=x\\1\\n$&");
    EXPECT_EQ(made(u"", plain), u"=");
}

TEST(ReplacementTemplate, PutsGroupsAndEscapesIn) {
    const struct {
        std::u16string written, made;
    } rows[] = {
        {u"\\3-\\1", u"=dos-uno"}, {u"[\\0]", u"=[uno-dos]"},
        {u"\\2\\9", u"="},         {u"a\\nb\\tc\\rd", u"=a\nb\tc\rd"},
        {u"\\\\1", u"=\\1"},       {u"\\q\\", u"=\\q\\"},
        {u"\\10", u"=uno0"},       {u"", u"="},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(made(row.written, regularExpression), row.made);
    }
}
