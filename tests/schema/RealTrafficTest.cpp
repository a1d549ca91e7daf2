#include <gtest/gtest.h>

#include <string>

#include "client/Request.h"
#include "reticle-client/Reply.h"
#include "tests/schema/Schema.h"
#include "tests/support/FrameClient.h"
#include "tests/support/ScriptedRtos.h"
#include "tests/system/Daemon.h"
#include "tests/system/DaemonTest.h"
#include "tests/system/Exchanges.h"
#include "tests/system/Simulator.h"
#include "tests/system/SystemTest.h"

namespace {

// Both texts must fit the schemas of the command.
void expectFits(const std::string& action, const std::string& request, const std::string& reply) {
    EXPECT_EQ(Schema("request", action).complaintAbout(request), "") << request;
    EXPECT_EQ(Schema("request").complaintAbout(request), "") << request;
    EXPECT_EQ(Schema("reply", action).complaintAbout(reply), "") << reply;
    EXPECT_EQ(Schema("reply").complaintAbout(reply), "") << reply;
}

/// The real service before a simulated device with eight reticles that takes one more.
class RealTrafficTest : public SystemTest {
protected:
    // The result of one exchange that must fit the schemas; "none" when it has none.
    std::string resultOf(const std::string& action, const std::string& request) {
        client.sendFrame(request);
        const std::string reply = client.readReply();
        expectFits(action, request, reply);
        return reticle::Reply::parse(reply).result.value_or("none");
    }

    FrameClient connected() {
        service.waitUntilListening();
        return FrameClient();
    }

    const Simulator simulator{{"--max-reticles", "9"}};
    Daemon service;
    FrameClient client = connected();
};

TEST_F(RealTrafficTest, List) {
    EXPECT_EQ(resultOf("RETICLES_GET_ALL", reticle::listRequest()), "OK");
}

TEST_F(RealTrafficTest, SetActive) {
    EXPECT_EQ(resultOf("RETICLE_SET_ACTIVE", reticle::activateRequest(3)), "OK");
    EXPECT_EQ(resultOf("RETICLE_SET_ACTIVE", R"({"action":"RETICLE_SET_ACTIVE"})"), "OK");
    EXPECT_EQ(resultOf("RETICLE_SET_ACTIVE", reticle::activateRequest(99)),
              "RETICLE_INDEX_NOT_FOUND");
}

TEST_F(RealTrafficTest, AddAndUpdate) {
    const std::string action = "RETICLES_ADD_OR_UPDATE";
    const reticle::NewReticle ring{"Ring 1\xC2\xB0", "<circle stroke=\"user_color\"/>\n"};
    EXPECT_EQ(resultOf(action, reticle::updateRequest(7, ring)), "OK");
    EXPECT_EQ(resultOf(action, reticle::addRequest(ring)), "OK");
    EXPECT_EQ(resultOf(action, R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[
                                   {"name":"Dot","data":"dot"},{"name":"Ring","data":"ring"}]})"),
              "RETICLES_COUNT_OUT_OF_BOUNDS");
    EXPECT_EQ(resultOf(action, reticle::updateRequest(99, ring)), "RETICLE_INDEX_NOT_FOUND");
    EXPECT_EQ(resultOf(action, R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[]})"), "none");
}

TEST_F(RealTrafficTest, AddAndUpdateInOneRequest) {
    EXPECT_EQ(resultOf("RETICLES_ADD_OR_UPDATE",
                       R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[
                           {"index":7,"name":"Dot","data":"dot"},
                           {"index":null,"name":"Ring","data":"ring"}]})"),
              "OK");
}

TEST_F(RealTrafficTest, Delete) {
    const std::string action = "RETICLES_DELETE";
    EXPECT_EQ(resultOf(action, reticle::removeRequest(7)), "OK");
    EXPECT_EQ(resultOf(action, reticle::removeRequest(0)), "RETICLE_CANT_BE_DELETED");
    EXPECT_EQ(resultOf(action, reticle::removeRequest(7)), "RETICLE_INDEX_NOT_FOUND");
    EXPECT_EQ(resultOf(action, R"({"action":"RETICLES_DELETE"})"), "none");
}

/// What only a device that a test plays can say.
class UnusualRepliesTest : public DaemonTest {
protected:
    std::string replyTo(const std::string& answer) {
        client.sendFrame(exchanges::GET_ALL);
        static_cast<void>(rtos.exchange(answer));
        std::string reply = client.readReply();
        expectFits("RETICLES_GET_ALL", std::string(exchanges::GET_ALL), reply);
        return reply;
    }

    FrameClient client;
};

TEST_F(UnusualRepliesTest, RefusalWithoutAName) {
    EXPECT_EQ(reticle::Reply::parse(replyTo(R"([{"ret_val":3}])")).result, "");
}

TEST_F(UnusualRepliesTest, UnknownMessage) {
    EXPECT_EQ(reticle::Reply::parse(replyTo(R"([{"ret_val":8}])")).result, "UNKNOWN_ACTION");
}

TEST_F(UnusualRepliesTest, ListThatCannotBeRead) {
    EXPECT_NE(replyTo(std::string(exchanges::LIST_ANSWER)).find("\"reticles\" : null"),
              std::string::npos);
}

TEST_F(UnusualRepliesTest, ReticleWithoutAnIndex) {
    flash.write("reticle/dot.svg", exchanges::DOT);
    flash.write("list.json",
                R"([{"reticles":[{"name":"Dot","data":"dot.svg","userColor":"red"}]}])");
    EXPECT_NE(replyTo(std::string(exchanges::LIST_ANSWER)).find("\"index\" : null"),
              std::string::npos);
}

}  // namespace
