#include <gtest/gtest.h>

#include <string>

#include "tests/support/FrameClient.h"
#include "tests/support/Text.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundTest.h"

namespace {

using exchanges::DONE;
using exchanges::FULL;
using exchanges::FULL_REPLY;
using exchanges::GET_ALL;
using exchanges::LIST_ANSWER;
using exchanges::LIST_REQUEST;
using exchanges::ONE_DOT_REPLY_WITHOUT_RESULT;

constexpr auto ACTIVATE_ONE = R"({"action":"RETICLE_SET_ACTIVE","index":1})";
constexpr auto ADD_TWO = R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[
{"name":"A","data":"<a/>"},{"name":"B","data":"<b/>"}]})";
constexpr auto ADD_NOTHING = R"({"action":"RETICLES_ADD_OR_UPDATE"})";
constexpr auto DELETE_ONE = R"({"action":"RETICLES_DELETE","indices":[1]})";
constexpr auto DELETE_NOTHING = R"({"action":"RETICLES_DELETE"})";

/// A command that fails half-way has no reply, and nothing of one turns up in that of the next.
class FailedCommandTest : public ForegroundTest {
protected:
    FailedCommandTest() {
        flash.write("list.json", exchanges::ONE_DOT_LIST);
        flash.write("reticle/dot.svg", exchanges::DOT);
        flash.write("deep.json", repeated("[", 2000));
    }

    // The list request of a command, answered with a list that cannot be read.
    void failList() {
        EXPECT_EQ(rtos.exchange(R"([{"param":"deep.json","ret_val":0}])"), LIST_REQUEST);
        EXPECT_TRUE(service.hasError("_handlerRoutine, exception: Exceeded stackLimit"));
    }

    // The next command, which the RTOS refuses.
    void expectRefusalAlone(std::string_view request) {
        client.sendFrame(request);
        EXPECT_NE(rtos.exchange(FULL), "");
        EXPECT_EQ(client.readReply(), FULL_REPLY);
    }

    // The next command, which asks for nothing.
    void expectListAlone(std::string_view request) {
        client.sendFrame(request);
        EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
        EXPECT_EQ(client.readReply(), ONE_DOT_REPLY_WITHOUT_RESULT);
    }

    FrameClient client;
};

TEST_F(FailedCommandTest, ListLeavesNothingToTheNext) {
    client.sendFrame(GET_ALL);
    failList();
    expectRefusalAlone(GET_ALL);
}

TEST_F(FailedCommandTest, ActivationLeavesNothingToTheNext) {
    client.sendFrame(ACTIVATE_ONE);
    EXPECT_NE(rtos.exchange(DONE), "");
    failList();
    expectRefusalAlone(ACTIVATE_ONE);
}

TEST_F(FailedCommandTest, AdditionLeavesNothingToTheNext) {
    client.sendFrame(ADD_TWO);
    EXPECT_NE(rtos.exchange(DONE), "");
    EXPECT_NE(rtos.exchange("garbage"), "");
    expectListAlone(ADD_NOTHING);
}

TEST_F(FailedCommandTest, DeletionLeavesNothingToTheNext) {
    client.sendFrame(DELETE_ONE);
    EXPECT_NE(rtos.exchange(DONE), "");
    failList();
    expectListAlone(DELETE_NOTHING);
    client.sendFrame(DELETE_ONE);
    EXPECT_NE(rtos.exchange(DONE), "");
    failList();
    expectRefusalAlone(DELETE_ONE);
}

}  // namespace
