#include <gtest/gtest.h>

#include "tools/reticlectl/ReticleTable.h"

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

TEST(ReticleTable, AnEmptyListIsOneClearLine) {
    EXPECT_EQ(
        renderTable({}),
        "no reticles: the device's list is empty or could not be read (the service does not tell "
        "which)\n");
}

}  // namespace

}  // namespace reticlectl
