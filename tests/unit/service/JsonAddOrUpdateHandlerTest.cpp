#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "commands/JsonAddOrUpdateHandler.h"
#include "tests/unit/service/ExpectThrow.h"
#include "tests/unit/service/HandlerTest.h"

namespace reticled {
namespace {

using exchanges::DONE;
using exchanges::LIST_ANSWER;
using exchanges::LIST_REQUEST;
using exchanges::ONE_DOT_REPLY;
using exchanges::ONE_DOT_REPLY_WITHOUT_RESULT;

using Names = std::vector<std::string>;

constexpr auto THREE =
    R"({"reticles":[{"name":"A","data":"aa"},{"name":"B","data":"bb","index":3},{"name":"C","data":"cc"}]})";
constexpr auto ADD_A = R"([
	{
		"msg_id" : 78,
		"param2_name" : "A",
		"param3_data" : "a:/new_reticle_data0"
	}
])";
constexpr auto UPDATE_B = R"([
	{
		"msg_id" : 79,
		"param1_index" : 3,
		"param2_name" : "B",
		"param3_data" : "a:/new_reticle_data1"
	}
])";
constexpr auto ADD_C = R"([
	{
		"msg_id" : 78,
		"param2_name" : "C",
		"param3_data" : "a:/new_reticle_data2"
	}
])";

class JsonAddOrUpdateHandlerTest : public HandlerTest<JsonAddOrUpdateHandler> {
protected:
    /// The data files that are there now.
    [[nodiscard]] Names dataFiles() const {
        Names names = flash.names();
        std::erase(names, "list.json");
        return names;
    }

    const Names ALL_DATA_FILES{"new_reticle_data0", "new_reticle_data1", "new_reticle_data2"};
};

TEST_F(JsonAddOrUpdateHandlerTest, EachReticleTakesAnExchangeAndTheListFollows) {
    auto reply = handle(THREE);
    EXPECT_EQ(rtos.receiveRequest(), ADD_A);
    // All files are written before the RTOS hears of the first.
    EXPECT_EQ(dataFiles(), ALL_DATA_FILES);
    EXPECT_EQ(flash.read("new_reticle_data0"), "aa");
    EXPECT_EQ(flash.read("new_reticle_data1"), "bb");
    EXPECT_EQ(flash.read("new_reticle_data2"), "cc");
    rtos.answer(DONE);
    EXPECT_EQ(rtos.exchange(DONE), UPDATE_B);
    EXPECT_EQ(rtos.receiveRequest(), ADD_C);
    EXPECT_EQ(dataFiles(), ALL_DATA_FILES);
    rtos.answer(DONE);
    EXPECT_EQ(rtos.receiveRequest(), LIST_REQUEST);
    // Gone before the list is asked for.
    EXPECT_EQ(dataFiles(), Names{});
    rtos.answer(LIST_ANSWER);
    EXPECT_EQ(reply.get(), ONE_DOT_REPLY);
    EXPECT_TRUE(rtos.isQuiet());
    EXPECT_EQ(output.out(), std::string("buildmsg: ") + THREE + "\nbuildindices is empty \n" +
                                requestLine(ADD_A) + linkLine(DONE) + requestLine(UPDATE_B) +
                                linkLine(DONE) + requestLine(ADD_C) + linkLine(DONE) +
                                linkLine(LIST_ANSWER) + DOT_LINE + responseLine(ONE_DOT_REPLY));
    EXPECT_EQ(output.err(), "json value: 0\njson value: 0\njson value: 0\n");
}

TEST_F(JsonAddOrUpdateHandlerTest, RefusalOfTheSecondLeavesTheThirdUnsentAndNoFile) {
    auto reply = handle(THREE);
    EXPECT_EQ(rtos.exchange(DONE), ADD_A);
    EXPECT_EQ(rtos.exchange(R"([{"ret_val":6}])"), UPDATE_B);
    EXPECT_EQ(reply.get(), "{\n\t\"result\" : \"RETICLES_COUNT_OUT_OF_BOUNDS\"\n}");
    EXPECT_TRUE(rtos.isQuiet());
    EXPECT_EQ(dataFiles(), Names{});
}

TEST_F(JsonAddOrUpdateHandlerTest, NoReticlesFetchTheListAloneAndTheReplyHasNoResult) {
    constexpr auto REQUEST = R"({"action":"RETICLES_ADD_OR_UPDATE"})";
    auto reply = handle(REQUEST);
    EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
    EXPECT_EQ(reply.get(), ONE_DOT_REPLY_WITHOUT_RESULT);
    EXPECT_TRUE(rtos.isQuiet());
    EXPECT_EQ(output.out(), std::string("buildmsg: ") + REQUEST + "\nbuildindices is empty \n" +
                                linkLine(LIST_ANSWER) + DOT_LINE +
                                responseLine(ONE_DOT_REPLY_WITHOUT_RESULT));
}

TEST_F(JsonAddOrUpdateHandlerTest, SecondCommandNumbersItsFilesFromZeroAgain) {
    for (int i = 0; i < 2; ++i) {
        auto reply = handle(R"({"reticles":[{"name":"A","data":"aa"}]})");
        EXPECT_EQ(rtos.exchange(DONE), ADD_A);
        EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
        EXPECT_EQ(reply.get(), ONE_DOT_REPLY);
    }
}

TEST_F(JsonAddOrUpdateHandlerTest, FilesOfAFailedCommandStayUntilTheNextOneIsDone) {
    auto failed = handle(R"({"reticles":[{"name":"A","data":"left over"}]})");
    EXPECT_EQ(rtos.exchange("no json"), ADD_A);
    expectThrow<std::runtime_error>([&] { static_cast<void>(failed.get()); },
                                    "Corrupted json packet was received fromRTOS");
    EXPECT_EQ(dataFiles(), Names{"new_reticle_data0"});

    auto reply = handle(R"({"reticles":[{"name":"B","data":"bb","index":3}]})");
    EXPECT_EQ(rtos.receiveRequest(), UPDATE_B);
    EXPECT_EQ(flash.read("new_reticle_data0"), "left over");
    EXPECT_EQ(flash.read("new_reticle_data1"), "bb");
    rtos.answer(DONE);
    EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
    EXPECT_EQ(reply.get(), ONE_DOT_REPLY);
    EXPECT_EQ(dataFiles(), Names{});
}

TEST_F(JsonAddOrUpdateHandlerTest, FilesOfAFailedCommandGoWithTheHandler) {
    auto failed = handle(R"({"reticles":[{"name":"A","data":"left over"}]})");
    EXPECT_EQ(rtos.exchange("no json"), ADD_A);
    expectThrow<std::runtime_error>([&] { static_cast<void>(failed.get()); },
                                    "Corrupted json packet was received fromRTOS");
    handler.reset();
    EXPECT_EQ(dataFiles(), Names{});
}

TEST_F(JsonAddOrUpdateHandlerTest, LinkFailureInTheListRefreshGivesNoReplyAndLeavesNoFile) {
    auto reply = handle(R"({"reticles":[{"name":"A","data":"aa"}]})");
    EXPECT_EQ(rtos.exchange(DONE), ADD_A);
    EXPECT_EQ(rtos.exchange("no json"), LIST_REQUEST);
    expectThrow<std::runtime_error>([&] { static_cast<void>(reply.get()); },
                                    "Corrupted json packet was received fromRTOS");
    EXPECT_EQ(dataFiles(), Names{});
}

TEST_F(JsonAddOrUpdateHandlerTest, WithoutStorageTheRtosIsAskedAllTheSame) {
    flash.remove();
    auto reply = handle(R"({"reticles":[{"name":"A","data":"aa"}]})");
    EXPECT_EQ(rtos.exchange(R"([{"ret_val":8}])"), ADD_A);
    EXPECT_EQ(reply.get(), "{\n\t\"result\" : \"UNKNOWN_ACTION\"\n}");
    EXPECT_FALSE(flash.exists(""));
}

}  // namespace
}  // namespace reticled
