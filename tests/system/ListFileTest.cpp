#include <gtest/gtest.h>

#include <string>

#include "tests/support/FrameClient.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundTest.h"

namespace {

constexpr auto UNREADABLE = "Error: json str is wrong, can't be deserialized\n";
constexpr auto BAD_ENTRY = "Wrong json key\n";
constexpr auto NO_RETICLES = R"({
	"result" : "OK",
	"reticles" : null
})";

/// One list request; what the RTOS answers and has in its list file makes the difference.
class ListFileTest : public ForegroundTest {
protected:
    ListFileTest() { flash.write("reticle/dot.svg", exchanges::DOT); }

    std::string replyTo(std::string_view answer) {
        FrameClient client;
        client.sendFrame(exchanges::GET_ALL);
        EXPECT_EQ(rtos.exchange(answer), exchanges::LIST_REQUEST);
        return client.readReply();
    }

    std::string replyToList(std::string_view list) {
        flash.write("list.json", list);
        return replyTo(exchanges::LIST_ANSWER);
    }

    // Error lines, without the one that names the result.
    [[nodiscard]] std::string listErrors() const {
        const std::string always = "json value: 0\n";
        const std::string errors = service.errors();
        EXPECT_TRUE(errors.starts_with(always));
        return errors.substr(always.size());
    }
};

TEST_F(ListFileTest, AnswerMayBeAnObjectOfObjects) {
    flash.write("list.json", exchanges::ONE_DOT_LIST);
    EXPECT_EQ(replyTo(R"({"a":{"ret_val":0,"param":"list.json"}})"), exchanges::ONE_DOT_REPLY);
    EXPECT_EQ(listErrors(), "");
}

TEST_F(ListFileTest, LastTextUnderParamNamesTheFile) {
    flash.write("list.json", exchanges::ONE_DOT_LIST);
    EXPECT_EQ(
        replyTo(R"([{"param":"other.json"},{"param":"list.json"},{"param":5},{"ret_val":0}])"),
        exchanges::ONE_DOT_REPLY);
}

TEST_F(ListFileTest, NameIsAppendedToTheStorageRootAsItStands) {
    flash.write("reticle/list.json", exchanges::ONE_DOT_LIST);
    EXPECT_EQ(replyTo(R"([{"ret_val":0,"param":"/reticle/../reticle/list.json"}])"),
              exchanges::ONE_DOT_REPLY);
    EXPECT_EQ(replyTo(R"([{"ret_val":0,"param":"a:/list.json"}])"), NO_RETICLES);
}

TEST_F(ListFileTest, AnswerWithoutParamGivesNull) {
    EXPECT_EQ(replyTo(R"([{"ret_val":0}])"), NO_RETICLES);
    EXPECT_EQ(listErrors(), UNREADABLE);
}

TEST_F(ListFileTest, MissingListFileGivesNull) {
    EXPECT_EQ(replyTo(exchanges::LIST_ANSWER), NO_RETICLES);
    EXPECT_EQ(listErrors(), UNREADABLE);
}

TEST_F(ListFileTest, DirectoryAsListFileGivesNull) {
    EXPECT_EQ(replyTo(R"([{"ret_val":0,"param":"reticle"}])"), NO_RETICLES);
    EXPECT_EQ(listErrors(), UNREADABLE);
}

TEST_F(ListFileTest, EmptyListFileGivesNull) {
    EXPECT_EQ(replyToList(""), NO_RETICLES);
    EXPECT_EQ(listErrors(), UNREADABLE);
}

TEST_F(ListFileTest, ListFileThatIsNotJsonGivesNull) {
    EXPECT_EQ(replyToList("reticles:"), NO_RETICLES);
    EXPECT_EQ(listErrors(), UNREADABLE);
}

TEST_F(ListFileTest, EmptyArrayGivesNull) {
    EXPECT_EQ(replyToList("[]"), NO_RETICLES);
    EXPECT_EQ(listErrors(), UNREADABLE);
}

TEST_F(ListFileTest, NoEntriesGiveNullAndNotAnEmptyArray) {
    EXPECT_EQ(replyToList(R"([{"reticles":[]}])"), NO_RETICLES);
    EXPECT_EQ(listErrors(), "");
}

TEST_F(ListFileTest, ReticlesDirectlyInTheOutermostObjectAreNotFound) {
    EXPECT_EQ(replyToList(R"({"reticles":[{"index":1,"name":"Dot","data":"dot.svg",)"
                          R"("userColor":"red"}]})"),
              NO_RETICLES);
    EXPECT_EQ(listErrors(), "");
}

TEST_F(ListFileTest, OutermostObjectMayHoldTheObjectWithReticles) {
    const std::string object(exchanges::ONE_DOT_LIST.substr(1, exchanges::ONE_DOT_LIST.size() - 2));
    EXPECT_EQ(replyToList(R"({"list":)" + object + "}"), exchanges::ONE_DOT_REPLY);
}

TEST_F(ListFileTest, LastObjectDecidesEvenWithoutReticles) {
    const std::string object(exchanges::ONE_DOT_LIST.substr(1, exchanges::ONE_DOT_LIST.size() - 2));
    EXPECT_EQ(replyToList(R"({"a":)" + object + R"(,"b":{}})"), NO_RETICLES);
    EXPECT_EQ(replyToList(R"({"b":)" + object + R"(,"a":{}})"), exchanges::ONE_DOT_REPLY);
    EXPECT_EQ(replyToList("[" + object + R"(,"text",5])"), exchanges::ONE_DOT_REPLY);
}

TEST_F(ListFileTest, TwoEntriesKeepTheirOrder) {
    EXPECT_EQ(replyToList(R"([{"reticles":[
{"index":9,"name":"B","data":"dot.svg","userColor":"red"},
{"index":2,"name":"A","data":"dot.svg","userColor":"blue"}]}])"),
              R"({
	"result" : "OK",
	"reticles" : 
	[
		{
			"data" : "<circle fill=\"red\"/>",
			"index" : 9,
			"isActive" : false,
			"isDeletable" : false,
			"name" : "B"
		},
		{
			"data" : "<circle fill=\"blue\"/>",
			"index" : 2,
			"isActive" : false,
			"isDeletable" : false,
			"name" : "A"
		}
	]
})");
}

TEST_F(ListFileTest, BadEntriesAreLeftOutOneLineEach) {
    EXPECT_EQ(replyToList(R"([{"reticles":[
17,
{"index":2,"name":"No colour","data":"dot.svg"},
{"index":3,"name":"Colour is a number","data":"dot.svg","userColor":5},
{"index":4,"name":"No data","userColor":"red"},
{"index":5,"data":"dot.svg","userColor":"red"},
{"index":6,"name":"Flag is a text","data":"dot.svg","userColor":"red","isDeletable":"1"},
{"index":7,"name":"Flag is too large","data":"dot.svg","userColor":"red","isActive":2147483648},
{"index":1,"name":"Dot","data":"dot.svg","userColor":"red","isDeletable":1,"isActive":0}]}])"),
              exchanges::ONE_DOT_REPLY);
    EXPECT_EQ(listErrors(), std::string("Wrong json key\nWrong json key\nWrong json key\n"
                                        "Wrong json key\nWrong json key\nWrong json key\n") +
                                BAD_ENTRY);
}

TEST_F(ListFileTest, OnlyBadEntriesGiveNull) {
    EXPECT_EQ(replyToList(R"([{"reticles":[{"index":1}]}])"), NO_RETICLES);
    EXPECT_EQ(listErrors(), BAD_ENTRY);
}

TEST_F(ListFileTest, EntriesWithoutReticleTextAreLeftOutSilently) {
    flash.write("reticle/empty.svg", "");
    EXPECT_EQ(replyToList(R"([{"reticles":[
{"index":2,"name":"Missing","data":"missing.svg","userColor":"red"},
{"index":3,"data":"empty.svg","userColor":"red"},
{"index":4,"name":"Directory","data":"","userColor":"red"},
{"index":1,"name":"Dot","data":"/dot.svg","userColor":"red","isDeletable":1,"isActive":0}]}])"),
              exchanges::ONE_DOT_REPLY);
    EXPECT_EQ(listErrors(), "");
    EXPECT_TRUE(
        service.hasProgress("_getReticleData: reticle file path: /tmp/FL0/reticle/missing.svg\n"
                            "_getReticleData: reticle file path: /tmp/FL0/reticle/empty.svg\n"
                            "_getReticleData: reticle file path: /tmp/FL0/reticle/\n"
                            "_getReticleData: reticle file path: /tmp/FL0/reticle//dot.svg\n"));
}

TEST_F(ListFileTest, FlagsMayBeNumbersBooleansOrNull) {
    EXPECT_EQ(replyToList(R"([{"reticles":[
{"index":"7","name":"","data":"dot.svg","userColor":"","isDeletable":2,"isActive":true},
{"name":"No index","data":"dot.svg","userColor":"#0f0","isDeletable":false,"isActive":null},
{"index":[1,{}],"name":"Odd index","data":"dot.svg","userColor":"x","isDeletable":-1}]}])"),
              R"({
	"result" : "OK",
	"reticles" : 
	[
		{
			"data" : "<circle fill=\"\"/>",
			"index" : "7",
			"isActive" : true,
			"isDeletable" : true,
			"name" : ""
		},
		{
			"data" : "<circle fill=\"#0f0\"/>",
			"index" : null,
			"isActive" : false,
			"isDeletable" : false,
			"name" : "No index"
		},
		{
			"data" : "<circle fill=\"x\"/>",
			"index" : 
			[
				1,
				{}
			],
			"isActive" : false,
			"isDeletable" : true,
			"name" : "Odd index"
		}
	]
})");
    EXPECT_EQ(listErrors(), "");
}

TEST_F(ListFileTest, WhatCouldBeReadOfABrokenFileCounts) {
    std::string broken(exchanges::ONE_DOT_LIST);
    broken.back() = '}';
    EXPECT_EQ(replyToList(broken), exchanges::ONE_DOT_REPLY);
    EXPECT_EQ(listErrors(), "");
}

TEST_F(ListFileTest, TextsEndAtAZeroCharacter) {
    flash.write("list.json",
                R"([{"reticles":[{"index":1,"name":"Dot\u0000x","data":"dot.svg\u0000x",
"userColor":"red\u0000x","isDeletable":1,"isActive":0}]}])");
    EXPECT_EQ(replyTo(R"([{"param":"list.json\u0000x","ret_val":0}])"), exchanges::ONE_DOT_REPLY);
}

TEST_F(ListFileTest, NumbersKeepSeventeenDigits) {
    EXPECT_EQ(replyToList(R"([{"reticles":[
{"index":0.1,"name":"Dot","data":"dot.svg","userColor":"red","isDeletable":1,"isActive":0}]}])"),
              R"({
	"result" : "OK",
	"reticles" : 
	[
		{
			"data" : "<circle fill=\"red\"/>",
			"index" : 0.10000000000000001,
			"isActive" : false,
			"isDeletable" : true,
			"name" : "Dot"
		}
	]
})");
}

TEST_F(ListFileTest, DollarSignsInAColourAreEscapes) {
    EXPECT_EQ(replyToList(R"([{"reticles":[
{"index":1,"name":"Dot","data":"dot.svg","userColor":"$$ $& $1","isDeletable":1,"isActive":0}]}])"),
              R"({
	"result" : "OK",
	"reticles" : 
	[
		{
			"data" : "<circle fill=\"$ \"user_color\" \"/>",
			"index" : 1,
			"isActive" : false,
			"isDeletable" : true,
			"name" : "Dot"
		}
	]
})");
}

TEST_F(ListFileTest, CommentBesideAnIndexGoesOutWithIt) {
    EXPECT_EQ(replyToList(R"([{"reticles":[
{"name":"Dot","data":"dot.svg","userColor":"red","index":
// the factory's own
1}]}])"),
              R"({
	"result" : "OK",
	"reticles" : 
	[
		{
			"data" : "<circle fill=\"red\"/>",
			// the factory's own
			"index" : 1,
			"isActive" : false,
			"isDeletable" : false,
			"name" : "Dot"
		}
	]
})");
}

}  // namespace
