#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "simulator/base/EscapedText.h"

namespace sim {
namespace {

TEST(EscapedText, PlainTextIsWhatPeopleSee) {
    EXPECT_TRUE(isPlainText(""));
    EXPECT_TRUE(isPlainText("<svg>\n\t\\x \"ü☂𝔄\"\n"));
    for (const std::string text : {"\r\n", "\x07", "\x7f", "\xff", "\xc3", "\xe2\x98", "\x80",
                                   // overlong, a surrogate, above the last character
                                   "\xc0\x80", "\xed\xa0\x80", "\xf7\xbf\xbf\xbf"}) {
        EXPECT_FALSE(isPlainText("before" + text)) << escaped(text);
        EXPECT_FALSE(isPlainText(text + "after")) << escaped(text);
    }
    EXPECT_FALSE(isPlainText(std::string(1, '\0')));
}

TEST(EscapedText, EscapesWhatPeopleDoNotSee) {
    EXPECT_EQ(escaped(std::string("a\\b\r\n\t\0\xff\x7f~", 10)), "a\\\\b\\r\n\t\\x00\\xff\\x7f~");
}

TEST(EscapedText, TakesBackEveryByte) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    EXPECT_EQ(unescaped(escaped(all)), all);
    EXPECT_EQ(unescaped("\\xFF\\xff"), "\xff\xff");
}

TEST(EscapedText, RefusesWhatIsNoEscape) {
    for (const char* text : {"\\", "\\n", "\\x", "\\x1", "\\xg0", "\\x0g", "\\x-1"}) {
        EXPECT_THROW((void)unescaped(text), std::runtime_error) << text;
    }
}

}  // namespace
}  // namespace sim
