#include <gtest/gtest.h>
#include <json/value.h>

#include <stdexcept>
#include <string>

#include "commands/JsonSetActiveRetHandler.h"
#include "tests/unit/service/ExpectThrow.h"
#include "tests/unit/service/HandlerTest.h"

namespace reticled {
namespace {

using exchanges::DONE;
using exchanges::LIST_ANSWER;
using exchanges::LIST_REQUEST;
using exchanges::ONE_DOT_REPLY;

constexpr auto REQUEST = R"({"action":"RETICLE_SET_ACTIVE","index":2})";
constexpr auto ACTIVATE_2 = "[\n\t{\n\t\t\"msg_id\" : 77,\n\t\t\"param\" : 2\n\t}\n]";
constexpr auto ACTIVATE_0 = "[\n\t{\n\t\t\"msg_id\" : 77,\n\t\t\"param\" : 0\n\t}\n]";

using JsonSetActiveRetHandlerTest = HandlerTest<JsonSetActiveRetHandler>;

TEST_F(JsonSetActiveRetHandlerTest, AcceptedCommandTakesTwoExchangesAndRepliesTheList) {
    auto reply = handle(REQUEST);
    EXPECT_EQ(rtos.exchange(DONE), ACTIVATE_2);
    EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
    EXPECT_EQ(reply.get(), ONE_DOT_REPLY);
    EXPECT_TRUE(rtos.isQuiet());
    EXPECT_EQ(output.out(),
              linkLine(DONE) + linkLine(LIST_ANSWER) + DOT_LINE + responseLine(ONE_DOT_REPLY));
    EXPECT_EQ(output.err(), "json value: 0\n");
}

TEST_F(JsonSetActiveRetHandlerTest, RefusalTakesOneExchange) {
    constexpr auto REPLY = "{\n\t\"result\" : \"RETICLE_INDEX_NOT_FOUND\"\n}";
    auto reply = handle(REQUEST);
    EXPECT_EQ(rtos.exchange(R"([{"ret_val":5}])"), ACTIVATE_2);
    EXPECT_EQ(reply.get(), REPLY);
    EXPECT_TRUE(rtos.isQuiet());
    EXPECT_EQ(output.out(), linkLine(R"([{"ret_val":5}])") + responseLine(REPLY));
}

TEST_F(JsonSetActiveRetHandlerTest, MissingIndexActivatesReticleZero) {
    auto reply = handle(R"({"action":"RETICLE_SET_ACTIVE"})");
    EXPECT_EQ(rtos.exchange(DONE), ACTIVATE_0);
    EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
    EXPECT_EQ(reply.get(), ONE_DOT_REPLY);
}

TEST_F(JsonSetActiveRetHandlerTest, RequestThatCannotBeReadSendsNothing) {
    expectThrow<std::runtime_error>([&] { handler->handleJsReq(""); },
                                    "getIntVal: json msg is empty");
    EXPECT_THROW(handler->handleJsReq(R"({"index":"2"})"), Json::LogicError);
    EXPECT_FALSE(rtos.isCalled());
}

TEST_F(JsonSetActiveRetHandlerTest, ResultIsTheCommandsNotTheLists) {
    auto reply = handle(REQUEST);
    EXPECT_EQ(rtos.exchange(DONE), ACTIVATE_2);
    EXPECT_EQ(rtos.exchange(R"([{"param":"list.json","ret_val":8}])"), LIST_REQUEST);
    EXPECT_EQ(reply.get(), ONE_DOT_REPLY);
}

TEST_F(JsonSetActiveRetHandlerTest, LinkFailureInTheListRefreshGivesNoReply) {
    auto reply = handle(REQUEST);
    EXPECT_EQ(rtos.exchange(DONE), ACTIVATE_2);
    EXPECT_EQ(rtos.receiveRequest(), LIST_REQUEST);
    rtos.link().close();
    expectThrow<std::runtime_error>(
        [&] { static_cast<void>(reply.get()); },
        "Unexpected received FIN of local tcp connection,socket closed");
}

}  // namespace
}  // namespace reticled
