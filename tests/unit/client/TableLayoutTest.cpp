#include <gtest/gtest.h>

#include "tools/reticlectl/table/TableLayout.h"

namespace reticlectl {

namespace {

using Widths = std::vector<std::optional<std::size_t>>;

constexpr std::nullopt_t OUT = std::nullopt;

constexpr std::size_t GAP = 2;
const std::vector<ColumnWidth> COLUMNS = {{5, 5, 0}, {6, 6, 2}, {20, 8, 1}, {4, 4, 3}};

TEST(FitColumns, GivesWhatIsWantedWhereThereIsRoom) {
    EXPECT_EQ(fitColumns(COLUMNS, GAP, {}), (Widths{5, 6, 20, 4}));
    EXPECT_EQ(fitColumns(COLUMNS, GAP, 41), (Widths{5, 6, 20, 4}));
}

TEST(FitColumns, NarrowsFromTheRight) {
    const std::vector<ColumnWidth> columns = {{5, 5, 0}, {20, 8, 1}, {10, 7, 2}, {4, 4, 3}};
    EXPECT_EQ(fitColumns(columns, GAP, 44), (Widths{5, 20, 9, 4}));
    EXPECT_EQ(fitColumns(columns, GAP, 40), (Widths{5, 18, 7, 4}));
    EXPECT_EQ(fitColumns(columns, GAP, 30), (Widths{5, 8, 7, 4}));
}

TEST(FitColumns, LeavesOutByRank) {
    EXPECT_EQ(fitColumns(COLUMNS, GAP, 29), (Widths{5, 6, 8, 4}));
    EXPECT_EQ(fitColumns(COLUMNS, GAP, 28), (Widths{5, 6, 13, OUT}));
    EXPECT_EQ(fitColumns(COLUMNS, GAP, 22), (Widths{5, OUT, 15, OUT}));
    EXPECT_EQ(fitColumns(COLUMNS, GAP, 14), (Widths{5, OUT, OUT, OUT}));
}

TEST(FitColumns, KeepsTheLastAtAnyWidth) {
    EXPECT_EQ(fitColumns(COLUMNS, GAP, 1), (Widths{5, OUT, OUT, OUT}));
}

}  // namespace

}  // namespace reticlectl
