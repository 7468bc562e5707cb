#include <gtest/gtest.h>

#include "groups/GroupRows.h"

using namespace corvalis;

TEST(GroupRows, NewCustomIconNumberFillsTheFirstGap) {
    struct Case {
        std::vector<long> used;
        long expected;
    } cases[] = {{{}, 1}, {{1}, 2}, {{1, 2, 4}, 3}, {{2, 3}, 1}, {{4, 1, 2, 3}, 5}, {{1, 1, 2}, 3}};
    for (const Case& c : cases) EXPECT_EQ(newUniqueIconNumber(c.used), c.expected);
    EXPECT_EQ(customIconNumber("Custom 12"), 12);
    EXPECT_EQ(customIconNumber("Custom"), std::nullopt);
    EXPECT_EQ(customIconNumber("YellowFolder"), std::nullopt);
}

TEST(GroupRows, SelectionMeansOneGroupOnlyWhenEveryRowIsInIt) {
    struct Case {
        std::vector<EditorRow> rows;
        std::optional<int> group;
    } cases[] = {
        {{}, std::nullopt},
        {{{2}}, 2},
        {{{0, 3}}, 3},
        {{{0}, {1}}, std::nullopt},
        {{{0, 1}, {4, 1}}, 1},
        {{{0, 1}, {0, 2}}, std::nullopt},
        {{{1}, {0, 1}}, std::nullopt},
    };
    for (const Case& c : cases) EXPECT_EQ(selectedGroupOf(c.rows), c.group) << c.rows.size();
}

TEST(GroupRows, AfterARemovalTheFollowerOrTheNewLastIsSelected) {
    struct Case {
        std::vector<int> removed;
        int countBefore;
        std::optional<int> expected;
    } cases[] = {{{0}, 3, 0}, {{1, 2}, 5, 1}, {{3, 4}, 5, 2}, {{0, 1}, 2, std::nullopt}, {{1, 3}, 4, 1}};
    for (const Case& c : cases) EXPECT_EQ(memberAfterRemoving(c.removed, c.countBefore), c.expected);
    EXPECT_EQ(positionAfterRemoving(3, {0, 2, 5}), 1);
    EXPECT_EQ(nameOrderPosition({"a", "b", "b", "d"}, "b"), 3);  // after equal names
    EXPECT_EQ(nameOrderPosition({"File 9", "File 10"}, "File 10"), 2);
}
