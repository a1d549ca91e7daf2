#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "commands/JsonGetRetsHandler.h"
#include "tests/unit/service/ExpectThrow.h"
#include "tests/unit/service/HandlerTest.h"

namespace reticled {
namespace {

using exchanges::LIST_ANSWER;
using exchanges::LIST_REQUEST;
using exchanges::ONE_DOT_REPLY;

constexpr auto REQUEST = R"({"action":"RETICLES_GET_ALL"})";

using JsonGetRetsHandlerTest = HandlerTest<JsonGetRetsHandler>;

TEST_F(JsonGetRetsHandlerTest, ListIsFetchedInOneExchange) {
    auto reply = handle(REQUEST);
    EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
    EXPECT_EQ(reply.get(), ONE_DOT_REPLY);
    EXPECT_TRUE(rtos.isQuiet());
    EXPECT_EQ(output.out(), linkLine(LIST_ANSWER) +
                                "handleJsReq: rtos response: " + std::string(LIST_ANSWER) + '\n' +
                                DOT_LINE + responseLine(ONE_DOT_REPLY));
    EXPECT_EQ(output.err(), "json value: 0\n");
}

TEST_F(JsonGetRetsHandlerTest, RequestIsNotLookedAt) {
    for (const char* request : {R"({"action":"x","index":"y","extra":[1]})", "", "nonsense"}) {
        auto reply = handle(request);
        EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
        EXPECT_EQ(reply.get(), ONE_DOT_REPLY) << request;
    }
}

TEST_F(JsonGetRetsHandlerTest, RefusalHasAResultAndNoReticles) {
    constexpr auto ANSWER = R"([{"param":"list.json","ret_val":6}])";
    constexpr auto REPLY = "{\n\t\"result\" : \"RETICLES_COUNT_OUT_OF_BOUNDS\"\n}";
    auto reply = handle(REQUEST);
    EXPECT_EQ(rtos.exchange(ANSWER), LIST_REQUEST);
    EXPECT_EQ(reply.get(), REPLY);
    EXPECT_EQ(output.out(), linkLine(ANSWER) + "handleJsReq: rtos response: " + ANSWER + '\n' +
                                responseLine(REPLY));
}

TEST_F(JsonGetRetsHandlerTest, ListFileThatCannotBeReadGivesNullReticles) {
    auto reply = handle(REQUEST);
    EXPECT_EQ(rtos.exchange(R"([{"param":"missing.json","ret_val":0}])"), LIST_REQUEST);
    EXPECT_EQ(reply.get(), "{\n\t\"result\" : \"OK\",\n\t\"reticles\" : null\n}");
    EXPECT_EQ(output.err(),
              "json value: 0\n"
              "Error: json str is wrong, can't be deserialized\n");
}

TEST_F(JsonGetRetsHandlerTest, LinkFailureReachesTheCallerAndTheNextCommandIsServed) {
    auto failed = handle(REQUEST);
    EXPECT_EQ(rtos.exchange("no json"), LIST_REQUEST);
    expectThrow<std::runtime_error>([&] { static_cast<void>(failed.get()); },
                                    "Corrupted json packet was received fromRTOS");
    auto reply = handle(REQUEST);
    EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
    EXPECT_EQ(reply.get(), ONE_DOT_REPLY);
}

TEST_F(JsonGetRetsHandlerTest, NothingOfTheLastReplyIsLeft) {
    auto first = handle(REQUEST);
    EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
    EXPECT_EQ(first.get(), ONE_DOT_REPLY);
    auto second = handle(REQUEST);
    EXPECT_EQ(rtos.exchange(R"([{"ret_val":8}])"), LIST_REQUEST);
    EXPECT_EQ(second.get(), "{\n\t\"result\" : \"UNKNOWN_ACTION\"\n}");
}

}  // namespace
}  // namespace reticled
