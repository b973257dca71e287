#include "TextMove.h"

#include <gtest/gtest.h>

TEST(TextMove, CarriesAPartToAnotherPlace) {
    const struct {
        Offset to;
        std::u16string text;
    } rows[] = {
        {0, u"dosuno tres"}, {1, u"udosno tres"}, {4, u"uno dostres"},
        {5, u"uno dostres"}, {7, u"uno dostres"}, {8, u"uno tdosres"}, {11, u"uno tresdos"},
    };
    for (const auto& row : rows) {
        const TextMove move({4, 7}, u"dos", row.to);
        const std::u16string text = TextEdit::apply(move.edits, u"uno dostres");
        EXPECT_EQ(text, row.text) << row.to;
        EXPECT_EQ(text.substr(move.moved.lower, move.moved.length()), u"dos") << row.to;
        EXPECT_EQ(move.edits.empty(), row.to >= 4 && row.to <= 7);
    }
}
