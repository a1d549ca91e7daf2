#include <gtest/gtest.h>

#include "tools/reticlectl/table/TableLayout.h"

namespace reticlectl {

namespace {

using Widths = std::vector<std::size_t>;

constexpr std::size_t GAP = 2;
const std::vector<ColumnWidth> COLUMNS = {{5, 5}, {20, 8}, {10, 7}, {4, 4}};

TEST(FitColumns, GivesWhatIsWantedWhereThereIsRoom) {
    EXPECT_EQ(fitColumns(COLUMNS, GAP, {}), (Widths{5, 20, 10, 4}));
    EXPECT_EQ(fitColumns(COLUMNS, GAP, 45), (Widths{5, 20, 10, 4}));
}

TEST(FitColumns, NarrowsFromTheRight) {
    EXPECT_EQ(fitColumns(COLUMNS, GAP, 44), (Widths{5, 20, 9, 4}));
    EXPECT_EQ(fitColumns(COLUMNS, GAP, 40), (Widths{5, 18, 7, 4}));
    EXPECT_EQ(fitColumns(COLUMNS, GAP, 30), (Widths{5, 8, 7, 4}));
}

TEST(FitColumns, LeavesOutFromTheRight) {
    EXPECT_EQ(fitColumns(COLUMNS, GAP, 29), (Widths{5, 13, 7}));
    EXPECT_EQ(fitColumns(COLUMNS, GAP, 23), (Widths{5, 16}));
    EXPECT_EQ(fitColumns(COLUMNS, GAP, 14), (Widths{5}));
}

TEST(FitColumns, KeepsTheFirstAtAnyWidth) {
    EXPECT_EQ(fitColumns(COLUMNS, GAP, 1), (Widths{5}));
}

}  // namespace

}  // namespace reticlectl
