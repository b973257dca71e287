#include "../XMLCore/Random.h"
#include "AttributeRuns.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Underline = TemporaryAttributes::Underline;

const TemporaryAttributes red{QColor(Qt::red), Underline::none};
const TemporaryAttributes blue{QColor(Qt::blue), Underline::none};
const TemporaryAttributes invalid{QColor(Qt::red), Underline::thick};

AttributeRuns runsOf(Offset length) {
    AttributeRuns runs;
    runs.reset(length);
    return runs;
}

} // namespace

TEST(AttributeRuns, ReplacesWhatWasThere) {
    AttributeRuns runs = runsOf(100);
    runs.set({10, 40}, red);
    runs.set({20, 30}, blue);
    runs.set({35, 50}, invalid);
    const std::vector<AttributeRuns::Run> expected = {
        {{10, 20}, red}, {{20, 30}, blue}, {{30, 35}, red}, {{35, 50}, invalid}};
    EXPECT_EQ(runs.runs({0, 100}), expected);
    runs.set({0, 100}, {});
    EXPECT_EQ(runs.count(), 0U);
}

TEST(AttributeRuns, CutsRunsToTheAskedRange) {
    AttributeRuns runs = runsOf(100);
    runs.set({10, 40}, red);
    runs.set({60, 80}, blue);
    EXPECT_EQ(runs.runs({20, 70}), (std::vector<AttributeRuns::Run>{{{20, 40}, red}, {{60, 70}, blue}}));
    EXPECT_TRUE(runs.runs({40, 60}).empty());
    EXPECT_TRUE(runs.runs({15, 15}).empty());
}

TEST(AttributeRuns, MovesWithTheTextAround) {
    const struct {
        const char* what;
        SourceRange edited;
        std::int64_t change;
        std::vector<AttributeRuns::Run> expected;
    } rows[] = {
        {"insertion before", {5, 8}, 3, {{{13, 23}, red}, {{33, 43}, blue}}},
        {"insertion at the start", {10, 13}, 3, {{{13, 23}, red}, {{33, 43}, blue}}},
        {"insertion inside", {15, 18}, 3, {{{10, 23}, red}, {{33, 43}, blue}}},
        {"insertion at the end", {20, 23}, 3, {{{10, 20}, red}, {{33, 43}, blue}}},
        {"insertion behind", {90, 93}, 3, {{{10, 20}, red}, {{30, 40}, blue}}},
        {"removal inside", {12, 12}, -3, {{{10, 17}, red}, {{27, 37}, blue}}},
        {"removal across the end", {15, 15}, -10, {{{10, 15}, red}, {{20, 30}, blue}}},
        {"removal of a run", {5, 5}, -20, {{{10, 20}, blue}}},
        {"removal of both", {0, 0}, -100, {}},
        {"replacement of all", {0, 7}, -93, {}},
    };
    for (const auto& row : rows) {
        AttributeRuns runs = runsOf(100);
        runs.set({30, 40}, blue);
        runs.set({10, 20}, red);
        runs.edit(row.edited, row.change);
        EXPECT_EQ(runs.runs({0, 200}), row.expected) << row.what;
    }
}

TEST(AttributeRuns, ForgetsTheFarthestOfTooMany) {
    constexpr Offset length = 1'000'000;
    AttributeRuns runs = runsOf(length);
    for (Offset at = 0; at < length; at += 4) {
        runs.set(SourceRange::at(at, 2), red);
        ASSERT_LE(runs.count(), 65'536U);
    }
    EXPECT_TRUE(runs.runs({0, 1000}).empty());
    EXPECT_EQ(runs.runs({length - 1000, length}).size(), 250U);
}

/// Against one attribute a unit.
TEST(AttributeRuns, AgreesWithAttributesUnitByUnit) {
    Random random;
    const TemporaryAttributes kinds[] = {{}, red, blue, invalid};
    std::vector<TemporaryAttributes> model(200);
    AttributeRuns runs = runsOf(200);
    for (int step = 0; step < 5000; ++step) {
        const std::size_t size = model.size();
        const std::size_t lower = random.below(size + 1);
        const std::size_t upper = lower + random.below(std::min<std::size_t>(size - lower, 20) + 1);
        const SourceRange range = SourceRange::unchecked(Offset(lower), Offset(upper));
        if (random.below(3) > 0) {
            const TemporaryAttributes& kind = kinds[random.below(4)];
            runs.set(range, kind);
            std::fill(model.begin() + std::ptrdiff_t(lower), model.begin() + std::ptrdiff_t(upper), kind);
        } else {
            const std::size_t inserted = random.below(6);
            const bool isInside = lower > 0 && upper < size && model[lower - 1] == model[lower] &&
                                  model[lower - 1] == model[upper] && model[lower] == model[upper];
            const TemporaryAttributes filling = isInside ? model[lower] : TemporaryAttributes();
            const auto begin = model.begin() + std::ptrdiff_t(lower);
            model.insert(model.erase(begin, model.begin() + std::ptrdiff_t(upper)), inserted, filling);
            runs.edit(SourceRange::at(std::int64_t(lower), std::int64_t(inserted)),
                      std::int64_t(inserted) - std::int64_t(upper - lower));
        }
        std::vector<TemporaryAttributes> found(model.size());
        Offset last = 0;
        for (const AttributeRuns::Run& run : runs.runs({0, std::int64_t(model.size())})) {
            ASSERT_LE(last, run.range.lower);
            ASSERT_LT(run.range.lower, run.range.upper);
            last = run.range.upper;
            std::fill(found.begin() + run.range.lower, found.begin() + run.range.upper, run.attributes);
        }
        ASSERT_EQ(found, model) << "step " << step;
    }
}
