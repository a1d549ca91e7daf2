#include <gtest/gtest.h>

#include <string>

#include "tests/support/FrameClient.h"
#include "tests/support/HostileTexts.h"
#include "tests/support/Text.h"
#include "tests/system/DaemonTest.h"
#include "tests/system/Exchanges.h"

namespace {

using exchanges::FULL;
using exchanges::FULL_REPLY;
using exchanges::GET_ALL;
using exchanges::LIST_REQUEST;

/// Valid requests made to cost time. A service that keeps comments needs more than every wait's
/// bound for the smaller and half an hour for the larger one.
class HostileBodyTest : public DaemonTest {
protected:
    void expectNotHeldUp(const std::string& hostileBody) {
        FrameClient hostile;
        FrameClient other;
        hostile.sendFrame(hostileBody);
        EXPECT_EQ(rtos.exchange(FULL), LIST_REQUEST);
        other.sendFrame(GET_ALL);
        EXPECT_EQ(rtos.exchange(FULL), LIST_REQUEST);
        EXPECT_EQ(hostile.readReply(), FULL_REPLY);
        EXPECT_EQ(other.readReply(), FULL_REPLY);
    }

    static std::string withComments(std::size_t bytes) {
        constexpr std::string_view COMMENT = "/**/";
        return R"({"action":"RETICLES_GET_ALL","x":1)" + repeated(COMMENT, bytes / COMMENT.size()) +
               "}";
    }
};

TEST_F(HostileBodyTest, CommentsOf240KilobytesHoldUpNobody) {
    expectNotHeldUp(withComments(240000));
}

TEST_F(HostileBodyTest, CommentsOf4MegabytesHoldUpNobody) {
    expectNotHeldUp(withComments(4000000));
}

/// Bodies of the largest size that is not refused unseen: none ends the service, none holds it up for
/// good.
TEST_F(HostileBodyTest, LargestBodyOfEachKindIsAnsweredOrRefused) {
    constexpr std::size_t LARGEST_BODY_BYTES = 4194303;
    for (const HostileText& hostile : hostileTexts(LARGEST_BODY_BYTES)) {
        SCOPED_TRACE(hostile.kind);
        FrameClient client;
        client.sendFrame(hostile.text);
        if (hostile.isRequest) {
            EXPECT_EQ(rtos.exchange(FULL), LIST_REQUEST);
            EXPECT_EQ(client.readReply(), FULL_REPLY);
        }
        exchanges::expectServed(client, rtos);
    }
}

TEST_F(HostileBodyTest, ManyMembersHoldUpNobody) {
    std::string body = R"({"action":"RETICLES_GET_ALL")";
    for (int i = 0; i < 200000; ++i) {
        body += ",\"" + std::to_string(i) + "\":[]";
    }
    expectNotHeldUp(body + "}");
}

}  // namespace
