#include <gtest/gtest.h>
#include <json/value.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "processing/JsonRetriever.h"
#include "tests/support/Text.h"
#include "tests/unit/service/ExpectThrow.h"
#include "tests/unit/service/OutputCapture.h"

namespace reticled {

bool operator==(const ReticleRecord& left, const ReticleRecord& right) {
    return left.index == right.index && left.name == right.name && left.data == right.data;
}

void PrintTo(const ReticleRecord& record, std::ostream* stream) {
    *stream << '{' << record.index << ", \"" << record.name << "\", \"" << record.data << "\"}";
}

namespace {

constexpr auto UNPARSABLE = "Error: json str is wrong, can't be deserialized\n";
constexpr auto WRONG_KEY = "Wrong json key\n";

/// Texts that are JSON but no object: subscripting them by a key is an error of the library.
const std::vector<std::string> NO_OBJECTS{"[1]", "5", "\"text\"", "true", "[{\"index\":1}]"};

/// Texts with nothing to read.
const std::vector<std::string> NOTHING_TO_READ{"", "{}", "[]", "null", "nonsense", "{\"a\":", "//"};

class JsonRetrieverTest : public testing::Test {
protected:
    OutputCapture output;
};

TEST_F(JsonRetrieverTest, IsJsonTellsJsonFromOtherTexts) {
    for (const char* text :
         {"{}", "[]", "null", "5", "-1.5e3", "\"text\"", "true", " {\"a\":[1,2]} ",
          "/* why */ {} // end", "{\"a\":1} what follows is not read"}) {
        EXPECT_TRUE(JsonRetriever::isJson(text)) << text;
    }
    for (const char* text :
         {"", " ", "{", "{\"a\":}", "[1,,2]", "{'a':1}", "nonsense", "\"open", "//"}) {
        EXPECT_FALSE(JsonRetriever::isJson(text)) << text;
    }
    EXPECT_EQ(output.err(), "");
    EXPECT_EQ(output.out(), "");
}

TEST_F(JsonRetrieverTest, IsJsonWritesWhatTheParserThrowsAndSaysNo) {
    EXPECT_FALSE(JsonRetriever::isJson(repeated("[", 100'000)));
    EXPECT_EQ(output.err(), "Exceeded stackLimit in readValue().\n");
}

TEST_F(JsonRetrieverTest, NestingUpToTheParsersLimitIsJson) {
    EXPECT_TRUE(JsonRetriever::isJson(repeated("[", 1000) + repeated("]", 1000)));
    EXPECT_FALSE(JsonRetriever::isJson(repeated("{\"a\":", 1001) + "1" + repeated("}", 1001)));
    EXPECT_EQ(output.err(), "Exceeded stackLimit in readValue().\n");
}

TEST_F(JsonRetrieverTest, GetIntValReadsAnInteger) {
    EXPECT_EQ(JsonRetriever::getIntVal(R"({"index":4})", INDEX), 4);
    EXPECT_EQ(JsonRetriever::getIntVal(R"({"index":-2147483648})", INDEX), -2147483648);
    EXPECT_EQ(JsonRetriever::getIntVal(R"({"index":2.9})", INDEX), 2);
    EXPECT_EQ(JsonRetriever::getIntVal(R"({"index":true})", INDEX), 1);
    EXPECT_EQ(JsonRetriever::getIntVal(R"({"index":1,"index":2})", INDEX), 2);
    EXPECT_EQ(output.err(), "");
}

TEST_F(JsonRetrieverTest, GetIntValOfAMissingOrNullMemberIsZero) {
    EXPECT_EQ(JsonRetriever::getIntVal("{}", INDEX), 0);
    EXPECT_EQ(JsonRetriever::getIntVal(R"({"index":null})", INDEX), 0);
    EXPECT_EQ(JsonRetriever::getIntVal("null", INDEX), 0);
    EXPECT_EQ(JsonRetriever::getIntVal("nonsense", INDEX), 0);
}

TEST_F(JsonRetrieverTest, GetIntValOfAnEmptyTextThrows) {
    expectThrow<std::runtime_error>([] { static_cast<void>(JsonRetriever::getIntVal("", INDEX)); },
                                    "getIntVal: json msg is empty");
}

TEST_F(JsonRetrieverTest, GetIntValPassesTheLibrarysExceptionsOn) {
    for (const char* text : {R"({"index":"4"})", R"({"index":[4]})", R"({"index":2147483648})"}) {
        EXPECT_THROW(static_cast<void>(JsonRetriever::getIntVal(text, INDEX)), Json::LogicError)
            << text;
    }
    for (const std::string& text : NO_OBJECTS) {
        EXPECT_THROW(static_cast<void>(JsonRetriever::getIntVal(text, INDEX)), Json::LogicError)
            << text;
    }
    EXPECT_EQ(output.err(), "");
}

TEST_F(JsonRetrieverTest, StrictGettersTakeWhatCouldBeReadOfABrokenText) {
    EXPECT_EQ(JsonRetriever::getIntVal(R"({"index":4, )", INDEX), 4);
    EXPECT_EQ(JsonRetriever::getStrVal(R"({"action":"A", )", ACTION), "A");
}

TEST_F(JsonRetrieverTest, GetStrValReadsAString) {
    EXPECT_EQ(JsonRetriever::getStrVal(R"({"action":"RETICLES_DELETE"})", ACTION),
              "RETICLES_DELETE");
    EXPECT_EQ(JsonRetriever::getStrVal(R"({"action":""})", ACTION), "");
    EXPECT_EQ(JsonRetriever::getStrVal(R"({"action":"\u00e9\n"})", ACTION), "\xC3\xA9\n");
    EXPECT_EQ(JsonRetriever::getStrVal(R"({"action":"cut\u0000here"})", ACTION), "cut");
}

TEST_F(JsonRetrieverTest, GetStrValOfAnEmptyTextThrows) {
    expectThrow<std::runtime_error>([] { static_cast<void>(JsonRetriever::getStrVal("", ACTION)); },
                                    "getStrVal: json msg is empty");
}

TEST_F(JsonRetrieverTest, GetStrValWithoutAStringPassesTheLibrarysExceptionOn) {
    for (const char* text : {"{}", R"({"action":5})", R"({"action":null})", R"({"action":["A"]})",
                             "nonsense", "null"}) {
        EXPECT_THROW(static_cast<void>(JsonRetriever::getStrVal(text, ACTION)), Json::LogicError)
            << text;
    }
    for (const std::string& text : NO_OBJECTS) {
        EXPECT_THROW(static_cast<void>(JsonRetriever::getStrVal(text, ACTION)), Json::LogicError)
            << text;
    }
}

TEST_F(JsonRetrieverTest, NestingBeyondTheLimitReachesTheCallersOfTheStrictGetters) {
    const std::string deep = repeated("[", 100'000);
    EXPECT_THROW(static_cast<void>(JsonRetriever::getIntVal(deep, INDEX)), Json::RuntimeError);
    EXPECT_THROW(static_cast<void>(JsonRetriever::getStrVal(deep, ACTION)), Json::RuntimeError);
}

TEST_F(JsonRetrieverTest, GetValTakesTheLastEntrysInteger) {
    EXPECT_EQ(JsonRetriever::getVal<int>(R"([{"ret_val":1},{"ret_val":2}])", RET_VAL), 2);
    EXPECT_EQ(output.err(), "json value: 1\njson value: 2\n");
}

TEST_F(JsonRetrieverTest, GetValVisitsAnObjectsMembersByName) {
    EXPECT_EQ(JsonRetriever::getVal<int>(R"({"b":{"ret_val":1},"a":{"ret_val":2}})", RET_VAL), 1);
    EXPECT_EQ(output.err(), "json value: 2\njson value: 1\n");
}

TEST_F(JsonRetrieverTest, GetValCountsAnEntryWithoutTheMemberAsZero) {
    EXPECT_EQ(JsonRetriever::getVal<int>(R"([{"ret_val":5},{"param":"x"}])", RET_VAL), 0);
    EXPECT_EQ(output.err(), "json value: 5\njson value: 0\n");
}

TEST_F(JsonRetrieverTest, GetValPassesOverEntriesThatItCannotConvert) {
    EXPECT_EQ(
        JsonRetriever::getVal<int>(R"([{"ret_val":7},3,{"ret_val":"8"},{"ret_val":9e9}])", RET_VAL),
        7);
    EXPECT_EQ(output.err(), std::string("json value: 7\n") + WRONG_KEY + WRONG_KEY + WRONG_KEY);
}

TEST_F(JsonRetrieverTest, GetValWithoutAnyValueIsACodeThatNoResultHas) {
    EXPECT_EQ(JsonRetriever::getVal<int>("[1,\"a\",[2]]", RET_VAL), -1);
    EXPECT_EQ(output.err(), std::string(WRONG_KEY) + WRONG_KEY + WRONG_KEY);
}

TEST_F(JsonRetrieverTest, GetValOfAnEmptyTextSaysNothing) {
    EXPECT_EQ(JsonRetriever::getVal<int>("", RET_VAL), -1);
    EXPECT_EQ(JsonRetriever::getVal<std::string>("", NAME), "");
    EXPECT_EQ(output.err(), "");
}

TEST_F(JsonRetrieverTest, GetValOfAScalarHasNoEntries) {
    EXPECT_EQ(JsonRetriever::getVal<int>("5", RET_VAL), -1);
    EXPECT_EQ(output.err(), "");
}

TEST_F(JsonRetrieverTest, GetValReadsStringsToo) {
    EXPECT_EQ(JsonRetriever::getVal<std::string>(R"([{"name":"a"},{"name":"b"},{"name":1}])", NAME),
              "b");
    EXPECT_EQ(output.err(), std::string("json value: a\njson value: b\n") + WRONG_KEY);
}

TEST_F(JsonRetrieverTest, GetIntVectorSkipsWhatIsNoInteger) {
    EXPECT_EQ(JsonRetriever::getIntVector(R"({"indices":[1,"2",3]})", INDICES),
              (std::vector<int>{1, 3}));
    EXPECT_EQ(output.err(), WRONG_KEY);
}

TEST_F(JsonRetrieverTest, GetIntVectorKeepsOrderAndRepetitions) {
    EXPECT_EQ(JsonRetriever::getIntVector(R"({"indices":[5,1,1,-3]})", INDICES),
              (std::vector<int>{5, 1, 1, -3}));
    EXPECT_EQ(JsonRetriever::getIntVector(R"({"indices":{"b":1,"a":2}})", INDICES),
              (std::vector<int>{2, 1}));
    EXPECT_EQ(output.err(), "");
}

TEST_F(JsonRetrieverTest, GetIntVectorOfNoListIsEmpty) {
    for (const char* text : {R"({"indices":null})", R"({"indices":5})", R"({"indices":"5"})",
                             R"({"indices":[]})", R"({"action":"A"})"}) {
        EXPECT_EQ(JsonRetriever::getIntVector(text, INDICES), std::vector<int>()) << text;
    }
    EXPECT_EQ(output.err(), "");
}

TEST_F(JsonRetrieverTest, GetReticleRecordsReadsNewAndExistingReticles) {
    EXPECT_EQ(
        JsonRetriever::getReticleRecords(
            R"({"reticles":[{"name":"N","data":"D"},{"name":"","data":"","index":3},
                      {"name":"M","data":"E","index":null},{"name":"O","data":"F","index":-5}]})",
            RETICLES),
        (std::vector<ReticleRecord>{{-1, "N", "D"}, {3, "", ""}, {-1, "M", "E"}, {-5, "O", "F"}}));
    EXPECT_EQ(output.err(), "");
}

TEST_F(JsonRetrieverTest, GetReticleRecordsSkipsWhatItCannotRead) {
    EXPECT_EQ(JsonRetriever::getReticleRecords(
                  R"({"reticles":[{"name":1,"data":"D"},{"name":"N","data":null},{"data":"D"},
                      {"name":"N"},7,{"name":"N","data":"D","index":"3"},{"name":"kept","data":"D"}]})",
                  RETICLES),
              (std::vector<ReticleRecord>{{-1, "kept", "D"}}));
    EXPECT_EQ(output.err(), repeated(WRONG_KEY, 6));
}

TEST_F(JsonRetrieverTest, GetReticleRecordsOfNoListIsEmpty) {
    for (const char* text : {R"({"reticles":null})", R"({"reticles":"x"})", R"({"reticles":[]})",
                             R"({"action":"A"})"}) {
        EXPECT_TRUE(JsonRetriever::getReticleRecords(text, RETICLES).empty()) << text;
    }
    EXPECT_EQ(output.err(), "");
}

TEST_F(JsonRetrieverTest, LenientGettersSayThatThereIsNothingToRead) {
    for (const std::string& text : NOTHING_TO_READ) {
        const OutputCapture own;
        EXPECT_TRUE(JsonRetriever::getIntVector(text, INDICES).empty());
        EXPECT_TRUE(JsonRetriever::getReticleRecords(text, RETICLES).empty());
        EXPECT_EQ(own.err(), std::string(UNPARSABLE) + UNPARSABLE) << text;
        if (!text.empty()) {
            EXPECT_EQ(JsonRetriever::getVal<int>(text, RET_VAL), -1);
            EXPECT_EQ(own.err(), repeated(UNPARSABLE, 3)) << text;
        }
    }
}

TEST_F(JsonRetrieverTest, LenientGettersDoNotThrowOnARootThatHasNoMembers) {
    for (const std::string& text : NO_OBJECTS) {
        const OutputCapture own;
        EXPECT_TRUE(JsonRetriever::getIntVector(text, INDICES).empty());
        EXPECT_TRUE(JsonRetriever::getReticleRecords(text, RETICLES).empty());
        EXPECT_EQ(own.err(), std::string(WRONG_KEY) + WRONG_KEY) << text;
    }
}

TEST_F(JsonRetrieverTest, LenientGettersDoNotThrowOnDeepNesting) {
    const std::string deep = repeated("[", 100'000);
    EXPECT_EQ(JsonRetriever::getVal<int>(deep, RET_VAL), -1);
    EXPECT_TRUE(JsonRetriever::getIntVector(deep, INDICES).empty());
    EXPECT_TRUE(JsonRetriever::getReticleRecords(deep, RETICLES).empty());
    EXPECT_EQ(output.err(), repeated(UNPARSABLE, 3));
}

}  // namespace
}  // namespace reticled
