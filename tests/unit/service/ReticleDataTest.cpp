// The reading of one reticle file, with the user's colour put in.
#include <gtest/gtest.h>

#include <random>
#include <regex>
#include <string>
#include <vector>

#include "tests/support/FlashFiles.h"
#include "tests/unit/service/OutputCapture.h"
#include "tests/unit/service/peers/JsonNetBuilderTestPeer.h"

namespace reticled {
namespace {

std::string colored(const std::string& text, const std::string& userColor) {
    return JsonNetBuilderTestPeer::applyUserColor(text, userColor);
}

/// What devices and clients are used to: the library's replacement, with all its expansions.
std::string coloredByExpression(const std::string& text, const std::string& userColor) {
    return std::regex_replace(text, std::regex("\"user_color\""), '"' + userColor + '"');
}

class ReticleDataTest : public testing::Test {
protected:
    static std::string read(const std::string& fileName, const std::string& userColor) {
        return JsonNetBuilderTestPeer::getReticleData(fileName, userColor);
    }

    OutputCapture output;
    FlashFiles flash;
};

TEST_F(ReticleDataTest, FileIsReadAndColored) {
    flash.write("reticle/dot.svg", "<a fill=\"user_color\"/>\n");
    EXPECT_EQ(read("dot.svg", "#ff0000"), "<a fill=\"#ff0000\"/>\n");
    EXPECT_EQ(output.out(), "_getReticleData: reticle file path: /tmp/FL0/reticle/dot.svg\n");
    EXPECT_EQ(output.err(), "");
}

TEST_F(ReticleDataTest, MissingFileIsEmptyAndItsPathIsLogged) {
    EXPECT_EQ(read("missing", "red"), "");
    EXPECT_EQ(output.out(), "_getReticleData: reticle file path: /tmp/FL0/reticle/missing\n");
    EXPECT_EQ(output.err(), "");
}

TEST_F(ReticleDataTest, EmptyFileAndDirectoryAreEmpty) {
    flash.write("reticle/empty", "");
    EXPECT_EQ(read("empty", "red"), "");
    EXPECT_EQ(read("", "red"), "");
    EXPECT_EQ(read(".", "red"), "");
}

TEST_F(ReticleDataTest, NameIsAppendedAsItStands) {
    flash.write("reticle/dot.svg", "dot");
    flash.write("outside", "outside");
    EXPECT_EQ(read("/dot.svg", "red"), "dot");
    EXPECT_EQ(read("../outside", "red"), "outside");
    EXPECT_EQ(output.out(),
              "_getReticleData: reticle file path: /tmp/FL0/reticle//dot.svg\n"
              "_getReticleData: reticle file path: /tmp/FL0/reticle/../outside\n");
}

TEST(UserColorTest, PlaceholderAloneBecomesTheColorInQuotes) {
    for (const std::string color : {"#00ff00", "red", "255"}) {
        EXPECT_EQ(colored("\"user_color\"", color), '"' + color + '"');
    }
}

TEST(UserColorTest, EveryPlaceholderIsReplaced) {
    EXPECT_EQ(colored("\"user_color\" a \"user_color\"\"user_color\"", "x"), "\"x\" a \"x\"\"x\"");
}

TEST(UserColorTest, OtherSpellingsStay) {
    for (const std::string text :
         {"user_color", "'user_color'", "\"USER_COLOR\"", "\"user_colour\"", "\"user_color",
          "user_color\"", "\" user_color\"", ""}) {
        EXPECT_EQ(colored(text, "red"), text);
    }
}

TEST(UserColorTest, EmptyColorLeavesTwoQuotes) {
    EXPECT_EQ(colored("<\"user_color\">", ""), "<\"\">");
}

TEST(UserColorTest, DollarAndAmpersandPutThePlaceholderIn) {
    EXPECT_EQ(colored("<\"user_color\">", "$&"), "<\"\"user_color\"\">");
    EXPECT_EQ(colored("<\"user_color\">", "a$&b"), "<\"a\"user_color\"b\">");
}

TEST(UserColorTest, OtherDollarEscapesAreExpandedToo) {
    EXPECT_EQ(colored("<\"user_color\">", "$$"), "<\"$\">");
    EXPECT_EQ(colored("<\"user_color\">", "$`"), "<\"<\">");
    EXPECT_EQ(colored("<\"user_color\">", "$'"), "<\">\">");
    EXPECT_EQ(colored("<\"user_color\">", "$0"), "<\"\"user_color\"\">");
    EXPECT_EQ(colored("<\"user_color\">", "$000"), "<\"\"user_color\"0\">");
    EXPECT_EQ(colored("<\"user_color\">", "$1"), "<\"\">");
    EXPECT_EQ(colored("<\"user_color\">", "$012"), "<\"2\">");
    EXPECT_EQ(colored("<\"user_color\">", "$x"), "<\"$x\">");
    EXPECT_EQ(colored("<\"user_color\">", "$"), "<\"$\">");
}

TEST(UserColorTest, ColorIsNotSearchedForPlaceholders) {
    EXPECT_EQ(colored("\"user_color\"user_color\"", "\"user_color\""),
              "\"\"user_color\"\"user_color\"");
}

/// Texts and colours made of the pieces that matter.
class Pieces {
public:
    std::string join(const std::vector<std::string>& choices, unsigned most) {
        std::string text;
        for (unsigned count = below(most + 1); count > 0; --count) {
            text += choices[below(static_cast<unsigned>(choices.size()))];
        }
        return text;
    }

private:
    unsigned below(unsigned bound) { return static_cast<unsigned>(_random() % bound); }

    std::minstd_rand _random;
};

TEST(UserColorTest, GivesTheSameBytesAsTheLibrarysExpression) {
    const std::vector<std::string> texts{"\"user_color\"",
                                         "\"user_color",
                                         "user_color\"",
                                         "\"",
                                         "user",
                                         "_",
                                         "color",
                                         " ",
                                         "\n",
                                         "\xC3\xA9",
                                         std::string(1, '\0'),
                                         "<path/>",
                                         "$&",
                                         "\\"};
    const std::vector<std::string> plainColors{"red",
                                               "#00ff00",
                                               "\"",
                                               "\\",
                                               "&",
                                               "1",
                                               "'",
                                               "`",
                                               "user_color",
                                               "\n",
                                               "\xFF",
                                               "\"user_color\"",
                                               std::string(1, '\0')};
    std::vector<std::string> colors = plainColors;
    colors.insert(colors.end(),
                  {"$", "$", "$&", "$$", "$0", "$00", "$1", "$12", "$`", "$'", "0", "9"});
    constexpr int ROUNDS = 3000;
    Pieces pieces;
    for (int i = 0; i < ROUNDS; ++i) {
        for (const auto& choices : {plainColors, colors}) {
            const std::string text = pieces.join(texts, 12);
            const std::string color = pieces.join(choices, 4);
            ASSERT_EQ(colored(text, color), coloredByExpression(text, color))
                << "text " << text << ", colour " << color;
        }
    }
}

}  // namespace
}  // namespace reticled
