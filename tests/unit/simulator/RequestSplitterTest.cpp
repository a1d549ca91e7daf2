#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "simulator/link/RequestSplitter.h"

namespace sim {
namespace {

constexpr const char* LIST = "[\n\t{\n\t\t\"msg_id\" : 76,\n\t\t\"param_get\" : \"\"\n\t}\n]";

TEST(RequestSplitter, GivesATextThatArrivesWhole) {
    RequestSplitter splitter;
    splitter.feed(LIST);
    EXPECT_EQ(splitter.next(), LIST);
    EXPECT_EQ(splitter.next(), std::nullopt);
    EXPECT_FALSE(splitter.isInsideText());
}

TEST(RequestSplitter, JoinsATextThatArrivesByteForByte) {
    const std::string text = R"([{"param2_name":"a ] } \" \\","x":[{}]}])";
    RequestSplitter splitter;
    for (std::size_t at = 0; at + 1 < text.size(); ++at) {
        splitter.feed(text.substr(at, 1));
        ASSERT_EQ(splitter.next(), std::nullopt) << at;
        ASSERT_TRUE(splitter.isInsideText());
    }
    splitter.feed("]");
    EXPECT_EQ(splitter.next(), text);
}

TEST(RequestSplitter, PartsTextsThatArriveAtOnce) {
    RequestSplitter splitter;
    splitter.feed("[1]{\"a\":[]} \r\n\t[2][");
    EXPECT_EQ(splitter.next(), "[1]");
    EXPECT_EQ(splitter.next(), "{\"a\":[]}");
    EXPECT_EQ(splitter.next(), "[2]");
    EXPECT_EQ(splitter.next(), std::nullopt);
    EXPECT_TRUE(splitter.isInsideText());
}

TEST(RequestSplitter, SkipsBlanksWithoutTakingThemForAText) {
    RequestSplitter splitter;
    splitter.feed(" \t\r\n");
    EXPECT_EQ(splitter.next(), std::nullopt);
    EXPECT_FALSE(splitter.isInsideText());
}

TEST(RequestSplitter, HandsOutWhatBeginsNoText) {
    RequestSplitter splitter;
    splitter.feed("hello [1]");
    EXPECT_EQ(splitter.next(), "hello [1]");
    splitter.feed("[2]");
    EXPECT_EQ(splitter.next(), "[2]");
}

TEST(RequestSplitter, TakesBracketsInStringsForText) {
    RequestSplitter splitter;
    splitter.feed(R"(["]"][3])");
    EXPECT_EQ(splitter.next(), R"(["]"])");
    EXPECT_EQ(splitter.next(), "[3]");
}

TEST(RequestSplitter, HandsOutOneByteTooManyOfATextThatIsTooLong) {
    constexpr std::size_t PIECES = 64;
    constexpr std::size_t MAX = RequestSplitter::MAX_REQUEST_BYTES;
    const std::string piece(MAX / PIECES, ']');
    RequestSplitter splitter;
    splitter.feed("[\"");
    for (std::size_t i = 0; i < 2 * PIECES; ++i) {
        splitter.feed(piece);
        ASSERT_EQ(splitter.next(), std::nullopt) << i;
    }
    splitter.feed("\"][2]");
    EXPECT_EQ(splitter.next(), "[\"" + std::string(MAX - 1, ']'));
    EXPECT_EQ(splitter.next(), "[2]");
}

TEST(RequestSplitter, HandsOutTheLongestTextWhole) {
    const std::string text =
        "[\"" + std::string(RequestSplitter::MAX_REQUEST_BYTES - 4, 'x') + "\"]";
    RequestSplitter splitter;
    splitter.feed(text + "[2]");
    EXPECT_TRUE(splitter.next() == text);
    EXPECT_EQ(splitter.next(), "[2]");
}

}  // namespace
}  // namespace sim
