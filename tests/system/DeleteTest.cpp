#include <gtest/gtest.h>

#include "tests/support/FrameClient.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundTest.h"

namespace {

using exchanges::DONE;
using exchanges::LIST_REQUEST;

constexpr auto DELETE_1 = R"([
	{
		"msg_id" : 80,
		"param" : 1
	}
])";
constexpr auto DELETE_2 = R"([
	{
		"msg_id" : 80,
		"param" : 2
	}
])";
constexpr auto DELETE_5 = R"([
	{
		"msg_id" : 80,
		"param" : 5
	}
])";

class DeleteTest : public ForegroundTest {
protected:
    DeleteTest() {
        flash.write("list.json", exchanges::ONE_DOT_LIST);
        flash.write("reticle/dot.svg", exchanges::DOT);
    }

    void expectList(std::string_view reply) {
        EXPECT_EQ(rtos.exchange(exchanges::LIST_ANSWER), LIST_REQUEST);
        EXPECT_EQ(client.readReply(), reply);
        EXPECT_TRUE(rtos.isQuiet());
    }

    FrameClient client;
};

TEST_F(DeleteTest, EachIndexIsOneExchangeInTheOrderGiven) {
    client.sendFrame(R"({"action":"RETICLES_DELETE","indices":[5,2]})");
    EXPECT_EQ(rtos.exchange(DONE), DELETE_5);
    EXPECT_EQ(rtos.exchange(DONE), DELETE_2);
    expectList(exchanges::ONE_DOT_REPLY);
}

TEST_F(DeleteTest, RepeatedIndexIsSentTwice) {
    client.sendFrame(R"({"action":"RETICLES_DELETE","indices":[1,1]})");
    EXPECT_EQ(rtos.exchange(DONE), DELETE_1);
    EXPECT_EQ(rtos.exchange(DONE), DELETE_1);
    expectList(exchanges::ONE_DOT_REPLY);
}

TEST_F(DeleteTest, RefusalOfTheFirstIsTheOnlyExchange) {
    client.sendFrame(R"({"action":"RETICLES_DELETE","indices":[1,2,5]})");
    EXPECT_EQ(rtos.exchange(R"([{"ret_val":7}])"), DELETE_1);
    EXPECT_EQ(client.readReply(), "{\n\t\"result\" : \"RETICLE_CANT_BE_DELETED\"\n}");
    EXPECT_TRUE(rtos.isQuiet());
}

TEST_F(DeleteTest, RefusalOfTheSecondLeavesTheThirdUnsent) {
    client.sendFrame(R"({"action":"RETICLES_DELETE","indices":[1,2,5]})");
    EXPECT_EQ(rtos.exchange(DONE), DELETE_1);
    EXPECT_EQ(rtos.exchange(R"([{"ret_val":5}])"), DELETE_2);
    EXPECT_EQ(client.readReply(), "{\n\t\"result\" : \"RETICLE_INDEX_NOT_FOUND\"\n}");
    EXPECT_TRUE(rtos.isQuiet());
}

TEST_F(DeleteTest, NothingToDeleteGivesTheListWithoutResult) {
    for (const char* request :
         {R"({"action":"RETICLES_DELETE","indices":[]})", R"({"action":"RETICLES_DELETE"})",
          R"({"action":"RETICLES_DELETE","indices":5})"}) {
        client.sendFrame(request);
        expectList(exchanges::ONE_DOT_REPLY_WITHOUT_RESULT);
    }
    EXPECT_TRUE(service.hasProgress("\nbuildindices is empty \n", 3));
}

TEST_F(DeleteTest, IndicesThatAreNoIntegersAreSkipped) {
    client.sendFrame(R"({"action":"RETICLES_DELETE","indices":[1,"x",5]})");
    EXPECT_EQ(rtos.exchange(DONE), DELETE_1);
    EXPECT_EQ(rtos.exchange(DONE), DELETE_5);
    expectList(exchanges::ONE_DOT_REPLY);
    EXPECT_EQ(service.errors(), "Wrong json key\njson value: 0\njson value: 0\n");
}

TEST_F(DeleteTest, LinkFailureCostsTheReplyAndTheRest) {
    client.sendFrame(R"({"action":"RETICLES_DELETE","indices":[1,2]})");
    EXPECT_EQ(rtos.exchange("garbage"), DELETE_1);
    EXPECT_TRUE(service.hasError(
        "_handlerRoutine, exception: Corrupted json packet was received fromRTOS\n"));
    exchanges::expectServed(client, rtos);
}

}  // namespace
