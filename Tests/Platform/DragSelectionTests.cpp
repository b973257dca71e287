#include "DragSelection.h"

#include <gtest/gtest.h>

TEST(DragSelection, SelectsWholesOnBothSidesOfThePress) {
    const Rope text(u"uno dos\ntres cuatro\ncinco");
    using enum DragSelection::Granularity;
    const struct {
        DragSelection::Granularity granularity;
        Offset press, over;
        TextSelection selection;
    } rows[] = {
        {character, 5, 5, {5, 5}},   {character, 5, 9, {5, 9}}, {character, 5, 2, {5, 2}},
        {word, 5, 5, {4, 7}},        {word, 5, 14, {4, 19}},    {word, 5, 1, {7, 0}},
        {line, 5, 5, {0, 8}},        {line, 5, 9, {0, 20}},     {line, 9, 2, {20, 0}},
        {line, 22, 23, {20, 25}},
    };
    for (const auto& row : rows) {
        const DragSelection drag(row.press, row.granularity, text);
        EXPECT_EQ(drag.selection(row.over, text), row.selection) << row.press << " " << row.over;
    }
}

TEST(DragSelection, ExtendsFromTheAnchor) {
    const Rope text(u"uno dos tres");
    const auto drag =
        DragSelection::extending({6, 4}, DragSelection::Granularity::character, text);
    EXPECT_EQ(drag.selection(9, text), (TextSelection{6, 9}));
    EXPECT_EQ(drag.selection(1, text), (TextSelection{6, 1}));
}

TEST(ClickCounter, TellsAThirdClickByItsPlace) {
    ClickCounter clicks;
    EXPECT_EQ(clicks.single({10, 10}), 1);
    EXPECT_EQ(clicks.twice({10, 10}), 2);
    EXPECT_EQ(clicks.single({11, 10}), 3);
    EXPECT_EQ(clicks.single({11, 10}), 1);
    clicks.twice({10, 10});
    EXPECT_EQ(clicks.single({90, 10}), 1);
}
