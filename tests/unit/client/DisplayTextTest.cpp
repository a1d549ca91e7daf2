#include <gtest/gtest.h>

#include <string>

#include "tools/reticlectl/terminal/DisplayText.h"

namespace reticlectl {

namespace {

TEST(Printable, LeavesTextAsItIs) {
    EXPECT_EQ(printable("Mil-Dot 10x42 \\ Kr\xC3\xA4uz \xE5\x8D\x81 \xF0\x9F\x8E\xAF"),
              "Mil-Dot 10x42 \\ Kr\xC3\xA4uz \xE5\x8D\x81 \xF0\x9F\x8E\xAF");
    EXPECT_EQ(printable(""), "");
}

TEST(Printable, EscapesControlCharacters) {
    EXPECT_EQ(printable("a\nb\tc\rd"), "a\\nb\\tc\\rd");
    EXPECT_EQ(printable("\x1B[31mred\a"), "\\x1B[31mred\\x07");
    EXPECT_EQ(printable({"a\0b\x7F", 4}), "a\\x00b\\x7F");
    EXPECT_EQ(printable("\xC2\x9B"
                        "31m"),
              "\\x9B31m");
}

TEST(Printable, EscapesWhatTurnsTheLineAround) {
    // Byte by byte, so that nothing is turned around in this file.
    const std::string rightToLeft = {'\xE2', '\x80', '\xAE'};
    const std::string isolate = {'\xE2', '\x81', '\xA6'};
    EXPECT_EQ(printable("a" + rightToLeft + "b"), "a\\u202Eb");
    EXPECT_EQ(printable(isolate), "\\u2066");
    EXPECT_EQ(printable("\xE2\x80\xA8"), "\\u2028");
}

TEST(Printable, EscapesBytesThatAreNotUtf8) {
    EXPECT_EQ(printable("caf\xE9!"), "caf\\xE9!");
    EXPECT_EQ(printable("\xC3"), "\\xC3");
}

TEST(DisplayWidth, CountsColumnsInsteadOfBytes) {
    EXPECT_EQ(displayWidth(""), 0U);
    EXPECT_EQ(displayWidth("Dot"), 3U);
    EXPECT_EQ(displayWidth("Kr\xC3\xA4uz"), 5U);
    EXPECT_EQ(displayWidth("\xE5\x8D\x81\xE5\xAD\x97"), 4U);
    EXPECT_EQ(displayWidth("\xF0\x9F\x8E\xAF"), 2U);
    EXPECT_EQ(displayWidth("e\xCC\x81"), 1U);
    // What joins and varies emoji shows nothing itself.
    EXPECT_EQ(displayWidth("\xE2\x80\x8D\xEF\xB8\x8F"), 0U);
    // A half-width and a full-width letter.
    EXPECT_EQ(displayWidth("\xEF\xBD\xB6\xEF\xBC\xA1"), 3U);
}

TEST(Shortened, LeavesWhatFits) {
    EXPECT_EQ(shortened("Duplex", 6), "Duplex");
    EXPECT_EQ(shortened("", 0), "");
    EXPECT_EQ(shortened("\xE5\x8D\x81\xE5\xAD\x97", 4), "\xE5\x8D\x81\xE5\xAD\x97");
}

TEST(Shortened, EndsInAnEllipsis) {
    EXPECT_EQ(shortened("Duplex", 5), "Dupl\xE2\x80\xA6");
    EXPECT_EQ(shortened("Duplex", 1), "\xE2\x80\xA6");
    EXPECT_EQ(shortened("Duplex", 0), "");
}

TEST(Shortened, NeverCutsACharacter) {
    // Room for one and a half of the wide ones; then for the letter with its accent.
    EXPECT_EQ(shortened("\xE5\x8D\x81\xE5\xAD\x97\xE5\x8D\x81", 4), "\xE5\x8D\x81\xE2\x80\xA6");
    EXPECT_EQ(shortened("e\xCC\x81ta", 2), "e\xCC\x81\xE2\x80\xA6");
}

TEST(Wrapped, BreaksAtBlanksOrWhereItMust) {
    EXPECT_EQ(wrapped("one two three", 7), "one two\nthree\n");
    EXPECT_EQ(wrapped("one two three", 13), "one two three\n");
    EXPECT_EQ(wrapped("onetwothree", 4), "onet\nwoth\nree\n");
    EXPECT_EQ(wrapped("", 4), "\n");
    // Two columns each.
    EXPECT_EQ(wrapped("\xE5\x8D\x81\xE5\x8D\x81", 3), "\xE5\x8D\x81\n\xE5\x8D\x81\n");
}

TEST(Counted, OneThingHasNoPlural) {
    EXPECT_EQ(counted(0, "byte"), "0 bytes");
    EXPECT_EQ(counted(1, "byte"), "1 byte");
    EXPECT_EQ(counted(2, "byte"), "2 bytes");
}

}  // namespace

}  // namespace reticlectl
