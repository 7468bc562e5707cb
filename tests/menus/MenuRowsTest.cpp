#include <gtest/gtest.h>

#include "menus/MenuRows.h"

using namespace corvalis::menurows;
using Rows = std::vector<int>;

TEST(MenuRows, InsertionPointAndRowSelectedAfterRemoval) {
    struct Case { Rows selected; int count; int insertion; int afterRemoval; };
    const Case cases[] = {
        {{}, 4, 4, -1},
        {{0}, 4, 1, 0},         // the row that moved into its place
        {{1, 2}, 5, 3, 1},
        {{3}, 4, 4, 2},         // the last row: the one before it
        {{2, 3}, 4, 4, 1},      // a block ending at the last row
        {{0, 1, 2, 3}, 4, 4, -1},
        {{0, 2}, 4, 3, 1},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(insertionPoint(c.selected, c.count), c.insertion);
        EXPECT_EQ(rowAfterRemoval(c.selected, c.count), c.afterRemoval);
    }
}

TEST(MenuRows, ExtraSeparatorsAreLeadingDoubledAndTrailing) {
    struct Case { std::vector<bool> separators; Rows extra; };
    const Case cases[] = {
        {{true, false, true, true, false, true}, {0, 3, 5}},
        {{false, true, false}, {}},
        {{true, true}, {0, 1}},
        {{false, true, true, true}, {2, 3, 1}},  // the last kept one goes too
        {{}, {}},
    };
    for (const Case& c : cases) {
        Rows expected = c.extra;
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(extraSeparatorRows(c.separators), expected);
    }
}

TEST(MenuRows, DraggedRowsLandAboveTheTargetInTheirOrder) {
    struct Case { Rows dragged; int target; int landing; Rows order; };
    const Case cases[] = {
        {{0}, 3, 2, {1, 2, 0, 3}},
        {{3}, 0, 0, {3, 0, 1, 2}},
        {{0, 2}, 4, 2, {1, 3, 0, 2}},
        {{1, 3}, 0, 0, {1, 3, 0, 2}},
        {{1}, 2, 1, {0, 1, 2, 3}},  // dropped just below itself: nothing moves
        {{2}, 4, 3, {0, 1, 3, 2}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(landingRow(c.dragged, c.target), c.landing);
        EXPECT_EQ(orderAfterMove(4, c.dragged, c.target), c.order);
    }
}

TEST(MenuRows, SelectionFollowsTheRowsAnUnselectedDragPassed) {
    struct Case { Rows selected; int first; int landing; Rows after; };
    const Case cases[] = {
        {{2}, 0, 3, {1}},
        {{1, 2}, 0, 3, {0, 1}},
        {{4}, 0, 3, {4}},  // beyond the move: unchanged
        {{1}, 3, 0, {2}},
        {{0, 2}, 3, 0, {1, 3}},
    };
    for (const Case& c : cases) EXPECT_EQ(selectionAfterMove(c.selected, c.first, c.landing), c.after);
    EXPECT_EQ(selectionAfterRemovingRow({0, 2, 5}, 2), (Rows{0, 4}));
}

TEST(MenuRows, AddOffersMissingKindsInTheirFixedPlace) {
    std::vector<std::string> fixed{"A", "B", "C", "D"};
    EXPECT_EQ(missingKinds(fixed, {"C", "A", "Separator"}, {}, {"Folder", "Separator"}),
              (std::vector<std::string>{"B", "D", "Folder", "Separator"}));
    EXPECT_EQ(missingKinds(fixed, {}, {"B"}, {}), (std::vector<std::string>{"A", "C", "D"}));
}
