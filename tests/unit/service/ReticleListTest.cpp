// The RTOS's list file on its way into the reply's "reticles".
#include <gtest/gtest.h>

#include <string>

#include "tests/support/FlashFiles.h"
#include "tests/support/LinkTexts.h"
#include "tests/support/Text.h"
#include "tests/unit/service/OutputCapture.h"
#include "tests/unit/service/peers/JsonNetBuilderTestPeer.h"

namespace reticled {
namespace {

using exchanges::LIST_ANSWER;
using exchanges::ONE_DOT_REPLY_WITHOUT_RESULT;

constexpr auto NO_RETICLES = "{\n\t\"reticles\" : null\n}";
constexpr auto UNPARSABLE = "Error: json str is wrong, can't be deserialized\n";
constexpr auto WRONG_KEY = "Wrong json key\n";

class ReticleListTest : public testing::Test {
protected:
    ReticleListTest() { flash.write("reticle/dot.svg", exchanges::DOT); }

    /// The reply after the RTOS's list answer `answer`.
    static std::string replyTo(std::string_view answer) {
        JsonNetBuilder builder;
        builder.reset();
        builder.fillReticles(std::string(answer));
        builder.finish();
        return builder.getResponse();
    }

    /// The reply after an answer that names a list file with this content.
    [[nodiscard]] std::string replyWithList(std::string_view list) const {
        flash.write("list.json", list);
        return replyTo(LIST_ANSWER);
    }

    /// The same with a list file of one object that holds these entries.
    [[nodiscard]] std::string replyWithEntries(const std::string& entries) const {
        return replyWithList("[{\"reticles\":[" + entries + "]}]");
    }

    OutputCapture output;
    FlashFiles flash;
};

constexpr auto DOT_ENTRY =
    R"({"index":1,"name":"Dot","data":"dot.svg","userColor":"red","isDeletable":1,"isActive":0})";

/// DOT_ENTRY with the member "index" and the flags left to the test.
std::string entryWith(const std::string& members) {
    return R"({"name":"Dot","data":"dot.svg","userColor":"red")" + members + "}";
}

/// A reply with one record.
std::string oneRecord(const std::string& index, const std::string& isActive,
                      const std::string& isDeletable) {
    return R"({
	"reticles" : 
	[
		{
			"data" : "<circle fill=\"red\"/>",
			"index" : )" +
           index + R"(,
			"isActive" : )" +
           isActive + R"(,
			"isDeletable" : )" +
           isDeletable + R"(,
			"name" : "Dot"
		}
	]
})";
}

TEST_F(ReticleListTest, EntriesBecomeRecordsInTheirOrder) {
    flash.write("reticle/cross.svg", "cross");
    EXPECT_EQ(
        replyWithEntries(
            std::string(DOT_ENTRY) +
            R"(,{"index":0,"name":"Cross","data":"cross.svg","userColor":"","isActive":true})"),
        R"({
	"reticles" : 
	[
		{
			"data" : "<circle fill=\"red\"/>",
			"index" : 1,
			"isActive" : false,
			"isDeletable" : true,
			"name" : "Dot"
		},
		{
			"data" : "cross",
			"index" : 0,
			"isActive" : true,
			"isDeletable" : false,
			"name" : "Cross"
		}
	]
})");
    EXPECT_EQ(output.out(),
              "_getReticleData: reticle file path: /tmp/FL0/reticle/dot.svg\n"
              "_getReticleData: reticle file path: /tmp/FL0/reticle/cross.svg\n");
    EXPECT_EQ(output.err(), "");
}

TEST_F(ReticleListTest, AnswerMayNameTheFileInAnObjectsMember) {
    flash.write("list", exchanges::ONE_DOT_LIST);
    EXPECT_EQ(replyTo(R"({"any":{"param":"list"}})"), ONE_DOT_REPLY_WITHOUT_RESULT);
}

TEST_F(ReticleListTest, LastNameInTheAnswerCounts) {
    flash.write("list", exchanges::ONE_DOT_LIST);
    EXPECT_EQ(replyTo(R"([{"param":"wrong"},{"param":"list"},{"param":5},7,{}])"),
              ONE_DOT_REPLY_WITHOUT_RESULT);
    EXPECT_EQ(replyTo(R"({"b":{"param":"list"},"a":{"param":"wrong"}})"),
              ONE_DOT_REPLY_WITHOUT_RESULT);
}

TEST_F(ReticleListTest, WhatCouldBeReadOfABrokenAnswerCounts) {
    flash.write("list", exchanges::ONE_DOT_LIST);
    EXPECT_EQ(replyTo(R"([{"param":"list"},)"), ONE_DOT_REPLY_WITHOUT_RESULT);
}

TEST_F(ReticleListTest, WhatCouldBeReadOfABrokenListCounts) {
    std::string broken(exchanges::ONE_DOT_LIST);
    broken.back() = '}';
    EXPECT_EQ(replyWithList(broken), ONE_DOT_REPLY_WITHOUT_RESULT);
    EXPECT_EQ(output.err(), "");
}

TEST_F(ReticleListTest, TextsEndAtAZeroCharacter) {
    flash.write("list.json", R"([{"reticles":[{"index":1,"name":"Dot\u0000x",
"data":"dot.svg\u0000x","userColor":"red\u0000x","isDeletable":1,"isActive":0}]}])");
    EXPECT_EQ(replyTo(R"([{"param":"list.json\u0000x"}])"), ONE_DOT_REPLY_WITHOUT_RESULT);
    // Where the name of a file is opened it ends there in any case.
    EXPECT_EQ(output.out(), "_getReticleData: reticle file path: /tmp/FL0/reticle/dot.svg\n");
}

TEST_F(ReticleListTest, NameAtTheTopLevelIsNone) {
    EXPECT_EQ(replyTo(R"({"param":"list.json"})"), NO_RETICLES);
    EXPECT_EQ(output.err(), UNPARSABLE);
}

TEST_F(ReticleListTest, RtosPrefixOfANameIsNotRemoved) {
    flash.write("list.json", exchanges::ONE_DOT_LIST);
    EXPECT_EQ(replyTo(R"([{"param":"a:/list.json"}])"), NO_RETICLES);
    EXPECT_EQ(output.err(), UNPARSABLE);
}

TEST_F(ReticleListTest, EmptyAnswerGivesNullWithoutAWord) {
    EXPECT_EQ(replyTo(""), NO_RETICLES);
    EXPECT_EQ(output.err(), "");
}

TEST_F(ReticleListTest, AnswerOrListWithoutContentGivesNullAndAMessage) {
    for (const char* answer : {"[]", "{}", "null", "5", "nonsense", "[{}]", R"([{"param":"no"}])",
                               R"([{"param":"reticle"}])"}) {
        const OutputCapture own;
        EXPECT_EQ(replyTo(answer), NO_RETICLES) << answer;
        EXPECT_EQ(own.err(), UNPARSABLE) << answer;
    }
    for (const char* list : {"", "[]", "{}", "null", "nonsense"}) {
        const OutputCapture own;
        EXPECT_EQ(replyWithList(list), NO_RETICLES) << list;
        EXPECT_EQ(own.err(), UNPARSABLE) << list;
    }
}

TEST_F(ReticleListTest, ListWithReticlesAtItsTopLevelHasNone) {
    EXPECT_EQ(replyWithList(std::string(R"({"reticles":[)") + DOT_ENTRY + "]}"), NO_RETICLES);
    EXPECT_EQ(output.err(), "");
}

TEST_F(ReticleListTest, LastObjectOfTheListDecides) {
    const std::string with = std::string(R"({"reticles":[)") + DOT_ENTRY + "]}";
    EXPECT_EQ(replyWithList("{\"a\":" + with + ",\"b\":{}}"), NO_RETICLES);
    EXPECT_EQ(replyWithList("{\"a\":{},\"b\":" + with + "}"), ONE_DOT_REPLY_WITHOUT_RESULT);
    EXPECT_EQ(replyWithList("[" + with + ",{\"reticles\":5}]"), NO_RETICLES);
    EXPECT_EQ(output.err(), "");
}

TEST_F(ReticleListTest, EntriesOfTheListThatAreNoObjectsHaveNoSay) {
    const std::string with = std::string(R"({"reticles":[)") + DOT_ENTRY + "]}";
    EXPECT_EQ(replyWithList("[1," + with + R"(,"text",[2],true])"), ONE_DOT_REPLY_WITHOUT_RESULT);
}

TEST_F(ReticleListTest, NullInTheListCountsAsAnObjectWithoutReticles) {
    EXPECT_EQ(replyWithList(std::string(R"([{"reticles":[)") + DOT_ENTRY + "]},null]"),
              NO_RETICLES);
}

TEST_F(ReticleListTest, EmptyReticlesGiveNullNotAnEmptyArray) {
    EXPECT_EQ(replyWithEntries(""), NO_RETICLES);
    EXPECT_EQ(output.err(), "");
}

TEST_F(ReticleListTest, ReticlesMayBeAnObject) {
    EXPECT_EQ(replyWithList(std::string(R"([{"reticles":{"any":)") + DOT_ENTRY + "}}]"),
              ONE_DOT_REPLY_WITHOUT_RESULT);
}

TEST_F(ReticleListTest, EntryThatLacksAStringIsLeftOutWithAMessage) {
    for (const char* entry : {
             R"({"name":"Dot","data":"dot.svg"})",
             R"({"name":"Dot","data":"dot.svg","userColor":5})",
             R"({"name":"Dot","userColor":"red"})",
             R"({"name":"Dot","data":null,"userColor":"red"})",
             R"({"data":"dot.svg","userColor":"red"})",
             R"({"name":["Dot"],"data":"dot.svg","userColor":"red"})",
             "7",
             "[]",
             "\"text\"",
         }) {
        const OutputCapture own;
        EXPECT_EQ(replyWithEntries(entry), NO_RETICLES) << entry;
        EXPECT_EQ(own.err(), WRONG_KEY) << entry;
    }
}

TEST_F(ReticleListTest, FailedEntriesLeaveTheOthersAsTheyAre) {
    EXPECT_EQ(replyWithEntries(R"({"index":9,"name":"Lost","data":"dot.svg"},)" +
                               std::string(DOT_ENTRY) + ",5"),
              ONE_DOT_REPLY_WITHOUT_RESULT);
    EXPECT_EQ(output.err(), repeated(WRONG_KEY, 2));
}

TEST_F(ReticleListTest, EntryWhoseFileIsEmptyIsLeftOutSilentlyEvenWithoutAName) {
    flash.write("reticle/empty.svg", "");
    EXPECT_EQ(replyWithEntries(R"({"data":"empty.svg","userColor":"red"},)"
                               R"({"data":"missing.svg","userColor":"red","isActive":"no flag"})"),
              NO_RETICLES);
    EXPECT_EQ(output.err(), "");
    EXPECT_EQ(output.out(),
              "_getReticleData: reticle file path: /tmp/FL0/reticle/empty.svg\n"
              "_getReticleData: reticle file path: /tmp/FL0/reticle/missing.svg\n");
}

TEST_F(ReticleListTest, FlagsAreTrueForEverythingButZeroFalseNullAndNothing) {
    EXPECT_EQ(replyWithEntries(entryWith(R"(,"index":1,"isDeletable":2,"isActive":-1)")),
              oneRecord("1", "true", "true"));
    EXPECT_EQ(replyWithEntries(entryWith(R"(,"index":1,"isDeletable":true,"isActive":1.9)")),
              oneRecord("1", "true", "true"));
    EXPECT_EQ(replyWithEntries(entryWith(R"(,"index":1,"isDeletable":false,"isActive":null)")),
              oneRecord("1", "false", "false"));
    EXPECT_EQ(replyWithEntries(entryWith(R"(,"index":1,"isActive":0.9)")),
              oneRecord("1", "false", "false"));
    EXPECT_EQ(output.err(), "");
}

TEST_F(ReticleListTest, FlagThatIsNoIntegerDropsTheEntry) {
    for (const char* flag : {R"("1")", "[1]", "{}", "2147483648"}) {
        const OutputCapture own;
        EXPECT_EQ(replyWithEntries(entryWith(std::string(R"(,"isDeletable":)") + flag)),
                  NO_RETICLES);
        EXPECT_EQ(replyWithEntries(entryWith(std::string(R"(,"isActive":)") + flag)), NO_RETICLES);
        EXPECT_EQ(own.err(), repeated(WRONG_KEY, 2)) << flag;
    }
}

TEST_F(ReticleListTest, IndexIsCopiedAsItStands) {
    EXPECT_EQ(replyWithEntries(entryWith(R"(,"index":"7")")), oneRecord("\"7\"", "false", "false"));
    EXPECT_EQ(replyWithEntries(entryWith("")), oneRecord("null", "false", "false"));
    EXPECT_EQ(replyWithEntries(entryWith(R"(,"index":1.5)")), oneRecord("1.5", "false", "false"));
    EXPECT_EQ(replyWithEntries(entryWith(R"(,"index":18446744073709551615)")),
              oneRecord("18446744073709551615", "false", "false"));
}

TEST_F(ReticleListTest, IndexKeepsItsComments) {
    EXPECT_EQ(replyWithEntries(entryWith(",\"index\":7 // lucky\n")), R"({
	"reticles" : 
	[
		{
			"data" : "<circle fill=\"red\"/>",
			"index" : 7, // lucky
			"isActive" : false,
			"isDeletable" : false,
			"name" : "Dot"
		}
	]
})");
}

TEST_F(ReticleListTest, EarlierReticlesAreReplaced) {
    flash.write("list.json", exchanges::ONE_DOT_LIST);
    JsonNetBuilder builder;
    builder.fillReticles(std::string(LIST_ANSWER));
    builder.fillReticles("");
    EXPECT_EQ(builder.getResponse(), NO_RETICLES);
}

TEST_F(ReticleListTest, ListTextIsTheNamedFilesContent) {
    flash.write("list.json", "any content");
    EXPECT_EQ(JsonNetBuilderTestPeer::getReticlesList(std::string(LIST_ANSWER)), "any content");
    EXPECT_EQ(JsonNetBuilderTestPeer::getReticlesList("[]"), "");
    EXPECT_EQ(JsonNetBuilderTestPeer::getReticlesList("[{}]"), "");
    EXPECT_EQ(output.err(), "");
    EXPECT_EQ(output.out(), "");
}

}  // namespace
}  // namespace reticled
