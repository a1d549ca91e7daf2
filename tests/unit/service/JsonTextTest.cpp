#include <gtest/gtest.h>
#include <json/reader.h>

#include <optional>
#include <string>
#include <vector>

#include "processing/JsonRetriever.h"
#include "processing/JsonText.h"
#include "tests/support/Text.h"
#include "tests/unit/service/OutputCapture.h"
#include "tests/unit/service/RandomJson.h"

namespace reticled {
namespace {

/// What a parse came to.
struct Verdict {
    bool isJson = false;
    std::string thrown;
    Json::Value value;

    bool operator==(const Verdict& other) const {
        return isJson == other.isJson && thrown == other.thrown && value == other.value;
    }
};

void PrintTo(const Verdict& verdict, std::ostream* stream) {
    *stream << (verdict.isJson ? "JSON " : "no JSON ") << verdict.thrown << ' '
            << verdict.value.toStyledString();
}

Verdict verdictOf(const std::string& text, Comments comments) {
    Verdict verdict;
    try {
        verdict.isJson = parseJson(text, comments, verdict.value);
    } catch (const std::exception& error) {
        verdict.thrown = error.what();
    }
    return verdict;
}

/// What the library makes of it, with its own settings.
Verdict libraryVerdictOf(const std::string& text) {
    Verdict verdict;
    try {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
        verdict.isJson = Json::Reader().parse(text, verdict.value, true);
#pragma GCC diagnostic pop
    } catch (const std::exception& error) {
        verdict.thrown = error.what();
    }
    return verdict;
}

TEST(JsonTextTest, SkippingCommentsChangesNoValueNoVerdictAndNoException) {
    for (const std::string& text : randomJson::CORPUS) {
        EXPECT_EQ(verdictOf(text, Comments::SKIP), libraryVerdictOf(text)) << text;
        EXPECT_EQ(verdictOf(text, Comments::COLLECT), libraryVerdictOf(text)) << text;
    }
    constexpr int TEXTS = 6000;
    randomJson::Generator generator;
    int parsed = 0;
    for (int i = 0; i < TEXTS; ++i) {
        const std::string text = generator.text();
        const Verdict expected = libraryVerdictOf(text);
        ASSERT_EQ(verdictOf(text, Comments::SKIP), expected) << text;
        parsed += expected.isJson ? 1 : 0;
    }
    // Both kinds of texts are there.
    EXPECT_GT(parsed, TEXTS / 4);
    EXPECT_LT(parsed, TEXTS - TEXTS / 10);
}

TEST(JsonTextTest, CommentsAreKeptOnlyWhereTheyAreCollected) {
    constexpr auto TEXT = "[1 // one\n]";
    EXPECT_TRUE(
        verdictOf(TEXT, Comments::COLLECT).value[0].hasComment(Json::commentAfterOnSameLine));
    EXPECT_FALSE(verdictOf(TEXT, Comments::SKIP).value[0].hasComment(Json::commentAfterOnSameLine));
}

TEST(JsonTextTest, NothingOfAParseIsLeftForTheNext) {
    const Verdict expected = verdictOf("[1]", Comments::COLLECT);
    for (const std::string& before : {std::string("/* a */ [1 /* b */"), std::string("// c\n"),
                                      std::string("[1,2"), repeated("[", 2000)}) {
        static_cast<void>(verdictOf(before, Comments::COLLECT));
        const Verdict verdict = verdictOf("[1]", Comments::COLLECT);
        EXPECT_EQ(verdict, expected);
        EXPECT_EQ(writeJson(verdict.value), "[\n\t1\n]");
    }
}

TEST(JsonTextTest, NothingOfATextIsLeftForTheNext) {
    Json::Value deep;
    deep["a"]["b"].append("text");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(writeJson(deep),
                  "{\n\t\"a\" : \n\t{\n\t\t\"b\" : \n\t\t[\n\t\t\t\"text\"\n\t\t]\n\t}\n}");
        EXPECT_EQ(writeJson(Json::Value(5)), "5");
    }
}

TEST(JsonTextTest, ZeroBytesDoNotEndTheText) {
    Json::Value value;
    EXPECT_TRUE(parseJson(std::string("[\"a\0b\"]", 7), Comments::SKIP, value));
    EXPECT_EQ(value[0].asString(), std::string("a\0b", 3));
}

TEST(JsonTextTest, NestingBeyondTheLimitThrows) {
    const Verdict verdict = verdictOf(repeated("[", 100'000), Comments::SKIP);
    EXPECT_FALSE(verdict.isJson);
    EXPECT_EQ(verdict.thrown, "Exceeded stackLimit in readValue().");
}

TEST(JsonTextTest, TextsAreWrittenInTheLibrarysDefaultLayout) {
    Json::Value value;
    value["b"].append(1);
    value["b"].append("two\n\"\xC3\xA9");
    value["a"] = true;
    value["c"] = Json::Value();
    value["d"]["e"] = "";
    value["f"] = Json::arrayValue;
    EXPECT_EQ(writeJson(value), R"({
	"a" : true,
	"b" : 
	[
		1,
		"two\n\"\u00e9"
	],
	"c" : null,
	"d" : 
	{
		"e" : ""
	},
	"f" : []
})");
    EXPECT_EQ(writeJson(Json::Value()), "null");
}

}  // namespace
}  // namespace reticled
