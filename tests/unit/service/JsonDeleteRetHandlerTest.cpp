#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "commands/JsonDeleteRetHandler.h"
#include "tests/unit/service/ExpectThrow.h"
#include "tests/unit/service/HandlerTest.h"

namespace reticled {
namespace {

using exchanges::DONE;
using exchanges::LIST_ANSWER;
using exchanges::LIST_REQUEST;
using exchanges::ONE_DOT_REPLY;
using exchanges::ONE_DOT_REPLY_WITHOUT_RESULT;

constexpr auto DELETE_1 = "[\n\t{\n\t\t\"msg_id\" : 80,\n\t\t\"param\" : 1\n\t}\n]";
constexpr auto DELETE_4 = "[\n\t{\n\t\t\"msg_id\" : 80,\n\t\t\"param\" : 4\n\t}\n]";

using JsonDeleteRetHandlerTest = HandlerTest<JsonDeleteRetHandler>;

TEST_F(JsonDeleteRetHandlerTest, EachIndexTakesAnExchangeAndTheListFollows) {
    constexpr auto REQUEST = R"({"action":"RETICLES_DELETE","indices":[4,1]})";
    auto reply = handle(REQUEST);
    EXPECT_EQ(rtos.exchange(DONE), DELETE_4);
    EXPECT_EQ(rtos.exchange(DONE), DELETE_1);
    EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
    EXPECT_EQ(reply.get(), ONE_DOT_REPLY);
    EXPECT_TRUE(rtos.isQuiet());
    EXPECT_EQ(output.out(), std::string("buildmsg: ") + REQUEST + '\n' + requestLine(DELETE_4) +
                                linkLine(DONE) + requestLine(DELETE_1) + linkLine(DONE) +
                                linkLine(LIST_ANSWER) + DOT_LINE + responseLine(ONE_DOT_REPLY));
    EXPECT_EQ(output.err(), "json value: 0\njson value: 0\n");
}

TEST_F(JsonDeleteRetHandlerTest, RepeatedIndexIsSentTwice) {
    auto reply = handle(R"({"indices":[1,1]})");
    EXPECT_EQ(rtos.exchange(DONE), DELETE_1);
    EXPECT_EQ(rtos.exchange(DONE), DELETE_1);
    EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
    EXPECT_EQ(reply.get(), ONE_DOT_REPLY);
}

TEST_F(JsonDeleteRetHandlerTest, RefusalOfTheFirstLeavesTheOthersUnsent) {
    auto reply = handle(R"({"indices":[4,1,1]})");
    EXPECT_EQ(rtos.exchange(R"([{"ret_val":7}])"), DELETE_4);
    EXPECT_EQ(reply.get(), "{\n\t\"result\" : \"RETICLE_CANT_BE_DELETED\"\n}");
    EXPECT_TRUE(rtos.isQuiet());
}

TEST_F(JsonDeleteRetHandlerTest, RefusalOfTheSecondLeavesTheThirdUnsent) {
    auto reply = handle(R"({"indices":[4,1,4]})");
    EXPECT_EQ(rtos.exchange(DONE), DELETE_4);
    EXPECT_EQ(rtos.exchange(R"([{"ret_val":5}])"), DELETE_1);
    EXPECT_EQ(reply.get(), "{\n\t\"result\" : \"RETICLE_INDEX_NOT_FOUND\"\n}");
    EXPECT_TRUE(rtos.isQuiet());
}

TEST_F(JsonDeleteRetHandlerTest, NoIndicesFetchTheListAloneAndTheReplyHasNoResult) {
    for (const char* request : {R"({"indices":[]})", R"({"action":"RETICLES_DELETE"})"}) {
        auto reply = handle(request);
        EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
        EXPECT_EQ(reply.get(), ONE_DOT_REPLY_WITHOUT_RESULT) << request;
        EXPECT_TRUE(rtos.isQuiet());
    }
}

TEST_F(JsonDeleteRetHandlerTest, LinkFailureGivesNoReply) {
    auto reply = handle(R"({"indices":[4,1]})");
    EXPECT_EQ(rtos.exchange(DONE), DELETE_4);
    EXPECT_EQ(rtos.exchange("no json"), DELETE_1);
    expectThrow<std::runtime_error>([&] { static_cast<void>(reply.get()); },
                                    "Corrupted json packet was received fromRTOS");
}

}  // namespace
}  // namespace reticled
