#include <gtest/gtest.h>
#include <json/reader.h>
#include <time.h>

#include <algorithm>
#include <chrono>
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

/// Processor time of this thread: what else the machine does hardly counts.
std::chrono::nanoseconds processorTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// The shortest of several runs.
std::chrono::nanoseconds timeToJudge(const std::string& body) {
    constexpr int RUNS = 3;
    auto shortest = std::chrono::nanoseconds::max();
    for (int i = 0; i < RUNS; ++i) {
        const auto start = processorTime();
        static_cast<void>(JsonRetriever::isJson(body));
        shortest = std::min(shortest, processorTime() - start);
    }
    return shortest;
}

/// A body that is made to take long: `part` again and again in a frame.
struct HostileBody {
    const char* name;
    std::string start;
    std::string part;
    std::string end;

    [[nodiscard]] std::string ofBytes(std::size_t bytes) const {
        return start + repeated(part, bytes / part.size()) + end;
    }
};

void PrintTo(const HostileBody& body, std::ostream* stream) {
    *stream << body.name;
}

class HostileBodyTest : public testing::TestWithParam<HostileBody> {};

/// Whether a body of four times the size takes about four times as long. Quadratic time would be 16
/// times as long; another attempt is granted where the machine was busy with something else.
bool isLinearAt(std::size_t bytes, const HostileBody& hostile) {
    constexpr int TIMES = 4;
    constexpr int BOUND = 9;
    constexpr int ATTEMPTS = 5;
    const std::string small = hostile.ofBytes(bytes);
    const std::string large = hostile.ofBytes(bytes * TIMES);
    for (int i = 0; i < ATTEMPTS; ++i) {
        if (timeToJudge(large) < BOUND * timeToJudge(small)) {
            return true;
        }
    }
    return false;
}

TEST_P(HostileBodyTest, CostsTimeLinearInItsSize) {
    const OutputCapture output;
    // Step by step, so that a parser that is not linear is found before it takes hours.
    for (const std::size_t kilobytes : {8U, 32U, 128U}) {
        ASSERT_TRUE(isLinearAt(kilobytes * 1024, GetParam())) << kilobytes << " KB";
    }
    constexpr std::size_t LARGEST_BODY_BYTES = 4'194'303;
    const std::size_t frameBytes = GetParam().start.size() + GetParam().end.size();
    EXPECT_EQ(JsonRetriever::isJson(GetParam().ofBytes(LARGEST_BODY_BYTES - frameBytes)),
              !GetParam().end.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, HostileBodyTest,
    testing::Values(HostileBody{"CommentsAfterAValueOnItsLine", "{\"a\":1", "/**/", "}"},
                    HostileBody{"CommentsAfterAValueInAList", "[1", " /* x */", "]"},
                    HostileBody{"CommentsBeforeAValue", "[", "/* x */", "1]"},
                    HostileBody{"LineComments", "[", "//\n", "1]"},
                    HostileBody{"CommentsAfterEachValue", "[", "1 /* comment after it */,", "1]"},
                    HostileBody{"CommentsAfterTheEnd", "[]", "/**/", " "},
                    HostileBody{"ManyNumbers", "[", "1000000000,", "1]"},
                    HostileBody{"ManyMembers", "{", "\"a\":1,", "\"b\":1}"},
                    HostileBody{"LongString", "[\"", "\\u00e9", "\"]"},
                    HostileBody{"ErrorsAllOver", "[", "1 2,", ""},
                    HostileBody{"OpenBrackets", "", "[", ""}),
    [](const auto& shape) { return std::string(shape.param.name); });

}  // namespace
}  // namespace reticled
