#include "PlaceholderTracker.h"

#include "Random.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using Stops = std::vector<SourceRange>;

PlaceholderTracker tracking(Stops stops) {
    PlaceholderTracker tracker;
    tracker.start(std::move(stops));
    return tracker;
}

Stops adjusted(Stops stops, const TextEdit& edit) {
    PlaceholderTracker tracker = tracking(std::move(stops));
    tracker.adjust(edit);
    return tracker.stops();
}

TextEdit replace(SourceRange range, std::size_t length) { return {range, std::u16string(length, u'x')}; }

} // namespace

TEST(PlaceholderTracker, NeedsTwoStops) {
    EXPECT_FALSE(PlaceholderTracker().isActive());
    EXPECT_FALSE(tracking({}).isActive());
    EXPECT_FALSE(tracking({{5, 5}}).isActive());
    EXPECT_TRUE(tracking({{5, 5}, {5, 5}}).isActive());
}

TEST(PlaceholderTracker, EndsWhenItArrivesAtTheLastStop) {
    PlaceholderTracker tracker = tracking({{5, 5}, {12, 12}});
    EXPECT_EQ(tracker.next(), SourceRange(12, 12));
    EXPECT_FALSE(tracker.isActive());
    EXPECT_EQ(tracker.next(), std::nullopt);
    EXPECT_EQ(tracker.previous(), std::nullopt);
}

TEST(PlaceholderTracker, GrowsTheCurrentStopAndMovesLaterOnes) {
    EXPECT_EQ(adjusted({{5, 5}, {12, 12}}, replace({5, 5}, 3)), (Stops{{5, 8}, {15, 15}}));
}

TEST(PlaceholderTracker, EndsWhenAnEditOverlapsAnotherStop) {
    EXPECT_EQ(adjusted({{5, 5}, {12, 16}}, replace({10, 13}, 0)), Stops());
    EXPECT_EQ(adjusted({{5, 5}, {12, 16}}, replace({13, 13}, 1)), Stops());
    EXPECT_EQ(adjusted({{5, 5}, {12, 16}}, replace({15, 20}, 0)), Stops());
    EXPECT_EQ(adjusted({{5, 5}, {12, 16}}, replace({10, 20}, 0)), Stops());
    EXPECT_EQ(adjusted({{5, 5}, {12, 12}}, replace({10, 20}, 0)), Stops());
}

TEST(PlaceholderTracker, LeavesStopsBeforeAnEdit) {
    EXPECT_EQ(adjusted({{5, 5}, {12, 14}}, replace({20, 21}, 7)), (Stops{{5, 5}, {12, 14}}));
    EXPECT_EQ(adjusted({{5, 5}, {12, 14}}, replace({14, 15}, 0)), (Stops{{5, 5}, {12, 14}}));
    EXPECT_EQ(adjusted({{5, 5}, {12, 14}}, replace({14, 14}, 1)), (Stops{{5, 5}, {12, 14}}));
}

TEST(PlaceholderTracker, StaysAtTheFirstStop) {
    PlaceholderTracker tracker = tracking({{5, 5}, {8, 8}, {12, 12}});
    EXPECT_EQ(tracker.previous(), std::nullopt);
    EXPECT_EQ(tracker.next(), SourceRange(8, 8));
    EXPECT_EQ(tracker.previous(), SourceRange(5, 5));
    EXPECT_EQ(tracker.previous(), std::nullopt);
    EXPECT_EQ(tracker.next(), SourceRange(8, 8));
    EXPECT_EQ(tracker.next(), SourceRange(12, 12));
}

TEST(PlaceholderTracker, ShrinksTheCurrentStop) {
    EXPECT_EQ(adjusted({{5, 9}, {12, 12}}, replace({6, 8}, 0)), (Stops{{5, 7}, {10, 10}}));
    EXPECT_EQ(adjusted({{5, 9}, {12, 12}}, replace({5, 9}, 0)), (Stops{{5, 5}, {8, 8}}));
}

TEST(PlaceholderTracker, MovesStopsBehindAnEdit) {
    EXPECT_EQ(adjusted({{5, 6}, {12, 14}}, replace({2, 4}, 5)), (Stops{{8, 9}, {15, 17}}));
    EXPECT_EQ(adjusted({{5, 6}, {12, 14}}, replace({4, 5}, 0)), (Stops{{4, 5}, {11, 13}}));
    EXPECT_EQ(adjusted({{5, 6}, {12, 14}}, replace({11, 12}, 0)), (Stops{{5, 6}, {11, 13}}));
}

TEST(PlaceholderTracker, EndsWhenAnEditReachesOverTheCurrentStop) {
    EXPECT_EQ(adjusted({{5, 8}, {12, 12}}, replace({4, 6}, 0)), Stops());
    EXPECT_EQ(adjusted({{5, 8}, {12, 12}}, replace({7, 9}, 0)), Stops());
}

TEST(PlaceholderTracker, PushesAnEmptyStopAlongUnlessItIsTheCurrentOne) {
    EXPECT_EQ(adjusted({{5, 5}, {5, 5}}, replace({5, 5}, 2)), (Stops{{5, 7}, {7, 7}}));
    PlaceholderTracker tracker = tracking({{5, 5}, {5, 5}, {9, 9}});
    tracker.next();
    tracker.adjust(replace({5, 5}, 2));
    EXPECT_EQ(tracker.stops(), (Stops{{7, 7}, {5, 7}, {11, 11}}));
}

TEST(PlaceholderTracker, StartsAnewAtTheFirstStop) {
    PlaceholderTracker tracker = tracking({{1, 1}, {2, 2}, {3, 3}});
    tracker.next();
    tracker.start({{4, 4}, {5, 5}, {6, 6}});
    EXPECT_EQ(tracker.previous(), std::nullopt);
    EXPECT_EQ(tracker.next(), SourceRange(5, 5));
}

TEST(PlaceholderTracker, Cancels) {
    PlaceholderTracker tracker = tracking({{5, 5}, {12, 12}});
    tracker.cancel();
    EXPECT_FALSE(tracker.isActive());
    EXPECT_EQ(tracker.next(), std::nullopt);
}

TEST(PlaceholderTracker, HashesItsStopsAndPlace) {
    const std::hash<PlaceholderTracker> hash;
    const PlaceholderTracker first = tracking({{1, 1}, {2, 2}, {3, 3}});
    PlaceholderTracker second = first;
    EXPECT_EQ(first, second);
    EXPECT_EQ(hash(first), hash(second));
    second.next();
    EXPECT_NE(first, second);
    EXPECT_NE(hash(first), hash(second));
}

/// Each stop covers exactly the text that was typed in it, however the text around it changes.
TEST(PlaceholderTracker, KeepsItsStopsAtTheirText) {
    Random random;
    for (int round = 0; round < 2'000; ++round) {
        std::u16string text = u"..[a]..[b]..[c]..";
        Stops stops;
        for (std::size_t at = 0; (at = text.find(u'[', at)) != std::u16string::npos; ++at) {
            stops.push_back(SourceRange::at(static_cast<std::int64_t>(at), 3));
        }
        PlaceholderTracker tracker = tracking(stops);
        for (int edits = 0; edits < 8 && tracker.isActive(); ++edits) {
            const std::size_t lower = random.below(text.size() + 1);
            const std::size_t upper = lower + random.below(std::min<std::size_t>(3, text.size() - lower + 1));
            const TextEdit edit = replace(
                {static_cast<std::int64_t>(lower), static_cast<std::int64_t>(upper)}, random.below(3));
            const std::vector<SourceRange> before = tracker.stops();
            tracker.adjust(edit);
            for (std::size_t i = 1; i < tracker.stops().size(); ++i) {
                // No edit has changed the inside of a stop other than the current one.
                const SourceRange stop = before[i];
                const std::u16string kept = text.substr(stop.lower, stop.length());
                const std::u16string after = TextEdit::apply({&edit, 1}, text);
                EXPECT_EQ(after.substr(tracker.stops()[i].lower, tracker.stops()[i].length()), kept);
            }
            text = TextEdit::apply({&edit, 1}, text);
        }
    }
}
