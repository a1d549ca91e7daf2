#include <gtest/gtest.h>

#include "tests/support/FrameClient.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundTest.h"

namespace {

using exchanges::DONE;
using exchanges::expectServed;
using exchanges::LIST_REQUEST;

constexpr auto ACTIVATE_2 = R"([
	{
		"msg_id" : 77,
		"param" : 2
	}
])";

class SetActiveTest : public ForegroundTest {
protected:
    SetActiveTest() {
        flash.write("list.json", exchanges::ONE_DOT_LIST);
        flash.write("reticle/dot.svg", exchanges::DOT);
    }

    FrameClient client;
};

TEST_F(SetActiveTest, AcceptedRequestIsFollowedByTheList) {
    client.sendFrame(R"({"action":"RETICLE_SET_ACTIVE","index":2})");
    EXPECT_EQ(rtos.exchange(DONE), ACTIVATE_2);
    EXPECT_EQ(rtos.exchange(exchanges::LIST_ANSWER), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), exchanges::ONE_DOT_REPLY);
    EXPECT_TRUE(rtos.isQuiet());
}

TEST_F(SetActiveTest, RefusalIsOneExchange) {
    client.sendFrame(R"({"action":"RETICLE_SET_ACTIVE","index":2})");
    EXPECT_EQ(rtos.exchange(R"([{"ret_val":5}])"), ACTIVATE_2);
    EXPECT_EQ(client.readReply(), "{\n\t\"result\" : \"RETICLE_INDEX_NOT_FOUND\"\n}");
    EXPECT_TRUE(rtos.isQuiet());
}

TEST_F(SetActiveTest, ResultOfTheListAnswerIsNotRead) {
    client.sendFrame(R"({"action":"RETICLE_SET_ACTIVE","index":2})");
    EXPECT_EQ(rtos.exchange(DONE), ACTIVATE_2);
    EXPECT_EQ(rtos.exchange(R"([{"ret_val":8,"param":"list.json"}])"), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), exchanges::ONE_DOT_REPLY);
}

TEST_F(SetActiveTest, AbsentIndexIsZero) {
    client.sendFrame(R"({"action":"RETICLE_SET_ACTIVE"})");
    EXPECT_EQ(rtos.exchange(exchanges::FULL), R"([
	{
		"msg_id" : 77,
		"param" : 0
	}
])");
    EXPECT_EQ(client.readReply(), exchanges::FULL_REPLY);
}

TEST_F(SetActiveTest, IndexThatIsATextCostsTheReply) {
    client.sendFrame(R"({"action":"RETICLE_SET_ACTIVE","index":"2"})");
    EXPECT_TRUE(service.hasError("_handlerRoutine, exception: Value is not convertible to Int.\n"));
    EXPECT_FALSE(rtos.isCalled());
    expectServed(client, rtos);
}

TEST_F(SetActiveTest, LinkFailureInTheListRefreshCostsTheReply) {
    client.sendFrame(R"({"action":"RETICLE_SET_ACTIVE","index":2})");
    EXPECT_EQ(rtos.exchange(DONE), ACTIVATE_2);
    EXPECT_EQ(rtos.exchange("busy"), LIST_REQUEST);
    EXPECT_TRUE(service.hasError(
        "_handlerRoutine, exception: Corrupted json packet was received fromRTOS\n"));
    expectServed(client, rtos);
}

}  // namespace
