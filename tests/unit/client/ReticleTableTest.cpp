#include <gtest/gtest.h>

#include "tools/reticlectl/table/ReticleTable.h"

namespace reticlectl {

namespace {

using reticle::Reticle;

TEST(ReticleTable, AlignsItsColumns) {
    const std::vector<Reticle> reticles = {
        {0, "Duplex", R"(<svg><path stroke="#FF0000"/></svg>)", false, true},
        {12, "Mil-Dot", R"(<svg stroke="lime"/>)", true, false}};
    EXPECT_EQ(renderTable(reticles),
              "INDEX  ACTIVE  NAME     DELETABLE  COLOUR   BYTES\n"
              "    0  *       Duplex   no         #FF0000     35\n"
              "   12          Mil-Dot  yes        lime        20\n");
}

TEST(ReticleTable, AlignsWideAndAccentedNames) {
    const std::vector<Reticle> reticles = {{1, "\xE5\x8D\x81\xE5\xAD\x97", "", true, false},
                                           {2, "Kr\xC3\xA4uz", "", true, false},
                                           {3, "Dot", "", true, false}};
    EXPECT_EQ(renderTable(reticles),
              "INDEX  ACTIVE  NAME   DELETABLE  COLOUR  BYTES\n"
              "    1          \xE5\x8D\x81\xE5\xAD\x97   yes        -           0\n"
              "    2          Kr\xC3\xA4uz  yes        -           0\n"
              "    3          Dot    yes        -           0\n");
}

TEST(ReticleTable, ShowsADashForWhatTheDeviceDidNotSay) {
    EXPECT_EQ(renderTable({{{}, "Dot", "text", false, false}}),
              "INDEX  ACTIVE  NAME  DELETABLE  COLOUR  BYTES\n"
              "    -          Dot   no         -           4\n");
}

TEST(ReticleTable, EscapesWhatCouldSteerATerminal) {
    EXPECT_EQ(renderTable({{1, "a\x1B[2J\nb", "<g stroke=\"\x1B[0m\"/>", false, false}}),
              "INDEX  ACTIVE  NAME         DELETABLE  COLOUR   BYTES\n"
              "    1          a\\x1B[2J\\nb  no         \\x1B[0m     18\n");
}

TEST(ReticleTable, ShowsColoursBeforeTheirNames) {
    const std::vector<Reticle> reticles = {{0, "Dot", R"(<svg stroke="#0a0b0C"/>)", false, true},
                                           {1, "Odd", R"(<svg stroke="odd"/>)", false, false}};
    EXPECT_EQ(renderTable({reticles[1]}, {true, {}}),
              "\x1B[1mINDEX\x1B[0m  \x1B[1mACTIVE\x1B[0m  \x1B[1mNAME\x1B[0m  "
              "\x1B[1mDELETABLE\x1B[0m     \x1B[1mCOLOUR\x1B[0m  \x1B[1mBYTES\x1B[0m\n"
              "    1          Odd   no            odd        19\n");
    const std::string table = renderTable(reticles, {true, {}});
    EXPECT_NE(table.find("\x1B[38;2;128;128;128;48;2;10;11;12m▏▕\x1B[0m \x1B[1m#0a0b0C\x1B[0m  "),
              std::string::npos)
        << table;
}

TEST(ReticleTable, ShortensColoursAndNamesToTheWidth) {
    const std::string color(1000, 'c');
    const std::vector<Reticle> reticles = {
        {0, "A very long name", "<svg stroke=\"" + color + "\"/>", false, true}};
    EXPECT_EQ(renderTable(reticles, {false, 58}),
              "INDEX  ACTIVE  NAME              DELETABLE  COLOUR   BYTES\n"
              "    0  *       A very long name  no         cccccc\xE2\x80\xA6   1016\n");
    EXPECT_EQ(renderTable(reticles, {false, 50}),
              "INDEX  ACTIVE  NAME      DELETABLE  COLOUR   BYTES\n"
              "    0  *       A very \xE2\x80\xA6  no         cccccc\xE2\x80\xA6   1016\n");
}

TEST(ReticleTable, LeavesOutWhatHasNoRoom) {
    const std::vector<Reticle> reticles = {{0, "Dot", R"(<svg stroke="red"/>)", false, true}};
    EXPECT_EQ(renderTable(reticles, {false, 38}),
              "INDEX  ACTIVE  NAME  DELETABLE  COLOUR\n"
              "    0  *       Dot   no         red   \n");
    EXPECT_EQ(renderTable(reticles, {false, 37}),
              "INDEX  ACTIVE  NAME  DELETABLE\n"
              "    0  *       Dot   no       \n");
}

TEST(ReticleTable, NamesGoLast) {
    const std::vector<Reticle> reticles = {
        {0, "A very long name", R"(<svg stroke="red"/>)", false, true}};
    EXPECT_EQ(renderTable(reticles, {false, 20}),
              "INDEX  NAME         \n"
              "    0  A very long \xE2\x80\xA6\n");
    EXPECT_EQ(renderTable(reticles, {false, 14}),
              "INDEX\n"
              "    0\n");
}

TEST(ReticleTable, AnEmptyListIsOneClearLine) {
    EXPECT_EQ(
        renderTable({}),
        "no reticles: the device's list is empty or could not be read (the service does not tell "
        "which)\n");
}

}  // namespace

}  // namespace reticlectl
