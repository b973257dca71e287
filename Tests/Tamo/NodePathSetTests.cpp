#include "NodePathSet.h"

#include "Random.h"

#include <gtest/gtest.h>

#include <set>

TEST(NodePathSet, IsEmptyAtFirst) {
    const NodePathSet set;
    EXPECT_FALSE(set.contains(NodePath()));
    EXPECT_FALSE(set.contains(NodePath{{0}}));
    EXPECT_FALSE(set.contains(NodePathSet::root()));
}

TEST(NodePathSet, HoldsAPathWithoutThoseThatLeadToIt) {
    NodePathSet set;
    set.insert({{2, 0, 5}});
    EXPECT_TRUE(set.contains(NodePath{{2, 0, 5}}));
    EXPECT_FALSE(set.contains(NodePath{{2, 0}}));
    EXPECT_FALSE(set.contains(NodePath{{2}}));
    EXPECT_FALSE(set.contains(NodePath{{2, 0, 5, 0}}));
    EXPECT_FALSE(set.contains(NodePath{{2, 0, 4}}));
}

TEST(NodePathSet, KeepsWhatIsBelowAnErasedPath) {
    NodePathSet set;
    set.insert({{1}});
    set.insert({{1, 3}});
    set.erase({{1}});
    set.erase({{4, 4}});
    EXPECT_FALSE(set.contains(NodePath{{1}}));
    EXPECT_TRUE(set.contains(NodePath{{1, 3}}));
}

TEST(NodePathSet, AddsTheNodesAroundAnother) {
    NodePathSet set;
    set.insertAncestors({{1, 3, 2}});
    EXPECT_TRUE(set.contains(NodePath{{1}}));
    EXPECT_TRUE(set.contains(NodePath{{1, 3}}));
    EXPECT_FALSE(set.contains(NodePath{{1, 3, 2}}));
    EXPECT_FALSE(set.contains(NodePath()));
    set.insertAncestors({{7}});
    set.insertAncestors({});
    EXPECT_FALSE(set.contains(NodePath{{7}}));
}

TEST(NodePathSet, IsWalkedInStepWithATree) {
    NodePathSet set;
    set.insert({{4}});
    set.insert({{1, 0}});
    set.insert({{2}});
    NodePathSet::Cursor cursor = set.below(NodePathSet::root());
    EXPECT_TRUE(cursor.advance(0).isNone());
    const NodePathSet::Place first = cursor.advance(1);
    EXPECT_FALSE(set.contains(first));
    EXPECT_TRUE(set.contains(set.below(first).advance(0)));
    EXPECT_TRUE(set.contains(cursor.advance(2)));
    EXPECT_TRUE(cursor.advance(3).isNone());
    EXPECT_TRUE(set.contains(cursor.advance(4)));
    EXPECT_TRUE(cursor.advance(5).isNone());
    EXPECT_TRUE(set.below(NodePathSet::Place()).advance(0).isNone());
}

TEST(NodePathSet, HoldsAMillionAncestors) {
    const NodePath deep{std::vector<std::uint32_t>(1'000'000, 3)};
    NodePathSet set;
    set.insertAncestors(deep);
    EXPECT_FALSE(set.contains(deep));
    EXPECT_TRUE(set.contains(NodePath{std::vector<std::uint32_t>(999'999, 3)}));
}

TEST(NodePathSet, AgreesWithASetOfPaths) {
    Random random;
    const auto randomPath = [&random] {
        NodePath path;
        for (std::size_t level = random.below(5); level > 0; --level) {
            path.indices.push_back(static_cast<std::uint32_t>(random.below(5)));
        }
        return path;
    };
    for (int round = 0; round < 100; ++round) {
        NodePathSet set;
        std::set<NodePath> expected;
        for (int step = 0; step < 200; ++step) {
            NodePath path = randomPath();
            switch (random.below(4)) {
            case 0:
                set.erase(path);
                expected.erase(path);
                break;
            case 1:
                set.insertAncestors(path);
                for (; path.indices.size() > 1;) {
                    path.indices.pop_back();
                    expected.insert(path);
                }
                break;
            default:
                set.insert(path);
                expected.insert(path);
            }
            const NodePath asked = randomPath();
            ASSERT_EQ(set.contains(asked), expected.contains(asked)) << asked.description();
        }
    }
}

TEST(NodePathSet, IsBuiltAndReadPlaceByPlace) {
    NodePathSet set;
    const NodePathSet::Place leads = set.insert(NodePathSet::root(), 2, false);
    set.insert(leads, 0, true);
    set.insert(leads, 7, true);
    set.insert(leads, 7, false);
    EXPECT_FALSE(set.contains(NodePath{{2}}));
    EXPECT_TRUE(set.contains(NodePath{{2, 0}}));
    EXPECT_TRUE(set.contains(NodePath{{2, 7}})) << "a member stays one";
    NodePathSet::Cursor cursor = set.below(leads);
    EXPECT_FALSE(cursor.isAtEnd());
    EXPECT_TRUE(cursor.advance(3).isNone());
    EXPECT_FALSE(cursor.advance(7).isNone());
    EXPECT_TRUE(cursor.advance(8).isNone());
    EXPECT_TRUE(cursor.isAtEnd());
    EXPECT_TRUE(set.below(set.place(NodePath{{2, 0}})).isAtEnd());
}
