#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/FrameClient.h"
#include "tests/support/HostileTexts.h"
#include "tests/support/Text.h"
#include "tests/system/Exchanges.h"
#include "tests/system/Programs.h"
#include "tests/system/RestingDaemonTest.h"

namespace {

using exchanges::FULL;
using exchanges::FULL_REPLY;
using exchanges::GET_ALL;
using exchanges::LIST_REQUEST;

constexpr std::string_view DELETION_OF_1 = R"([
	{
		"msg_id" : 80,
		"param" : 1
	}
])";
constexpr std::string_view ADDITION_OF_R = R"([
	{
		"msg_id" : 78,
		"param2_name" : "R",
		"param3_data" : "a:/new_reticle_data0"
	}
])";

struct Expected {
    std::string_view rtosRequest;
    std::string_view reply;
};

/// What follows from a hostile request when the RTOS refuses all.
Expected expectedFor(HostileText::Request request) {
    switch (request) {
        case HostileText::Request::DELETION:
            return {DELETION_OF_1, FULL_REPLY};
        case HostileText::Request::ADDITION:
            return {ADDITION_OF_R, FULL_REPLY};
        case HostileText::Request::LIST_AFTER_CHANGE:
            return {LIST_REQUEST, "{\n\t\"reticles\" : null\n}"};
        default:
            return {LIST_REQUEST, FULL_REPLY};
    }
}

/// Valid requests made to cost time. A service that keeps comments needs more for them than every
/// wait's bound.
class HostileBodyTest : public RestingDaemonTest {
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

    /// Expects that a text is answered, the RTOS refusing what it is asked for first, or refused.
    void expectHandled(const HostileText& hostile) {
        FrameClient client;
        client.sendFrame(hostile.text);
        if (hostile.firstRequest != HostileText::Request::NONE) {
            const Expected expected = expectedFor(hostile.firstRequest);
            EXPECT_EQ(rtos.exchange(FULL), expected.rtosRequest);
            EXPECT_EQ(client.readReply(), expected.reply);
        }
        exchanges::expectServed(client, rtos);
    }
};

TEST_F(HostileBodyTest, CommentsOf4MegabytesHoldUpNobody) {
    expectNotHeldUp(R"({"action":"RETICLES_GET_ALL","x":1)" + repeated("/**/", 1000000) + "}");
}

/// Bodies of the largest size that is not refused unseen: none ends the service, none holds it up for
/// good, and none leaves its memory taken.
TEST_F(HostileBodyTest, LargestBodyOfEachKindIsAnsweredOrRefused) {
    constexpr std::size_t LARGEST_BODY_BYTES = 4194303;
    for (const HostileText& hostile : hostileTexts(LARGEST_BODY_BYTES)) {
        SCOPED_TRACE(hostile.kind);
        expectHandled(hostile);
        expectGivenBack();
    }
}

/// An eighth of that size, less under sanitizers and the emulator: the whole takes two gigabytes and longer than a
/// wait's bound on a machine that has other things to do.
TEST_F(HostileBodyTest, LargeChangesOfEachKindAreAnswered) {
    constexpr std::size_t LARGE_BODY_BYTES = programs::HAVE_OVERHEAD ? 131072 : 524288;
    for (const HostileText& hostile : hostileChanges(LARGE_BODY_BYTES)) {
        SCOPED_TRACE(hostile.kind);
        expectHandled(hostile);
        EXPECT_EQ(flash.names(), std::vector<std::string>{});
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
