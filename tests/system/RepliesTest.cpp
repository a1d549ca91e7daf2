#include <gtest/gtest.h>

#include <list>
#include <regex>
#include <vector>

#include "tests/support/FrameClient.h"
#include "tests/support/Text.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundTest.h"

namespace {

using exchanges::expectServed;
using exchanges::FULL;
using exchanges::FULL_REPLY;
using exchanges::GET_ALL;
using exchanges::LIST_REQUEST;

using RepliesTest = ForegroundTest;

// The first group of each match of `pattern` in `text`.
std::vector<std::string> matchesIn(const std::string& text, const std::regex& pattern) {
    std::vector<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end;
         ++match) {
        found.push_back((*match)[1]);
    }
    return found;
}

TEST_F(RepliesTest, EachClientGetsItsOwnReply) {
    FrameClient first;
    FrameClient second;
    first.sendFrame(GET_ALL);
    EXPECT_EQ(rtos.receiveRequest(), LIST_REQUEST);
    second.sendFrame(GET_ALL);
    rtos.answer(R"([{"ret_val":5}])");
    EXPECT_EQ(rtos.exchange(R"([{"ret_val":7}])"), LIST_REQUEST);
    EXPECT_EQ(second.readReply(), "{\n\t\"result\" : \"RETICLE_CANT_BE_DELETED\"\n}");
    EXPECT_EQ(first.readReply(), "{\n\t\"result\" : \"RETICLE_INDEX_NOT_FOUND\"\n}");
    EXPECT_TRUE(first.connection().isQuiet());
    EXPECT_TRUE(second.connection().isQuiet());
}

// Every client activates its own index, and the RTOS refuses each with a code of its own.
TEST_F(RepliesTest, RepliesLeaveInTheOrderOfTheRequestsWhateverTheirClients) {
    constexpr int FIRST_CODE = 5;
    constexpr int CLIENTS = 4;
    std::list<FrameClient> clients(CLIENTS);
    int code = FIRST_CODE;
    for (FrameClient& client : clients) {
        client.sendFrame(R"({"action":"RETICLE_SET_ACTIVE","index":)" + std::to_string(code++) +
                         "}");
    }
    std::vector<std::string> asked;
    for (int i = 0; i < CLIENTS; ++i) {
        asked.push_back(matchesIn(rtos.receiveRequest(), std::regex("\"param\" : (.)")).at(0));
        rtos.answer(R"([{"ret_val":)" + asked.back() + "}]");
    }
    const std::map<std::string, std::string> codes{{"RETICLE_INDEX_NOT_FOUND", "5"},
                                                   {"RETICLES_COUNT_OUT_OF_BOUNDS", "6"},
                                                   {"RETICLE_CANT_BE_DELETED", "7"},
                                                   {"UNKNOWN_ACTION", "8"}};
    for (FrameClient& client : clients) {
        EXPECT_NE(client.readReply(), "");
    }
    std::vector<std::string> sent;
    const std::regex reply("responseThread: msg to send = \\{\n\t\"result\" : \"(\\w+)\"");
    for (const std::string& result : matchesIn(service.progress(), reply)) {
        sent.push_back(codes.at(result));
    }
    EXPECT_EQ(sent, asked);
}

TEST_F(RepliesTest, ClientMayEndItsSideOnlyAfterTheReply) {
    FrameClient client;
    expectServed(client, rtos);
    client.connection().closeWriting();
    EXPECT_TRUE(client.connection().seesEnd());
}

TEST_F(RepliesTest, ReplyToAClientThatHasLeftIsReportedAndLaterOnesAreSent) {
    FrameClient staying;
    FrameClient leaving;
    expectServed(leaving, rtos);
    leaving.sendFrame(GET_ALL);
    EXPECT_EQ(rtos.receiveRequest(), LIST_REQUEST);
    leaving.connection().close();
    // What remains: standard streams, RTOS socket, listening socket, the client that stays.
    EXPECT_TRUE(
        eventually([&] { return service.info().descriptors().size() == DESCRIPTORS_AT_REST + 1; }));
    rtos.answer(FULL);
    EXPECT_TRUE(service.hasError("Bad file descriptor: Bad file descriptor\n"));
    EXPECT_EQ(service.errors(),
              "json value: 6\n"
              "json value: 6\n"
              "Error during send response for socket: 6\n"
              "Bad file descriptor: Bad file descriptor\n");
    expectServed(staying, rtos);
}

TEST_F(RepliesTest, OneRequestInWorkAndFifteenWaitingAreAnsweredTheRestIsDropped) {
    constexpr int ANSWERED = 16;
    FrameClient client;
    client.sendFrame(GET_ALL);
    EXPECT_EQ(rtos.receiveRequest(), LIST_REQUEST);
    for (int i = 0; i < ANSWERED + 4; ++i) {
        client.sendFrame(GET_ALL);
    }
    // Read after all of them by the same thread: by then each is queued or dropped.
    client.sendFrame("not json");
    EXPECT_TRUE(service.hasError("Error: received packet isn't json\n"));
    rtos.answer(FULL);
    EXPECT_EQ(client.readReply(), FULL_REPLY);
    // Each reply is taken before the next is made: all at once they might overflow their own queue.
    for (int i = 1; i < ANSWERED; ++i) {
        EXPECT_EQ(rtos.exchange(FULL), LIST_REQUEST);
        EXPECT_EQ(client.readReply(), FULL_REPLY);
    }
    // The queue is empty again: the next request is the next exchange.
    client.sendFrame(R"({"action":"RETICLE_SET_ACTIVE","index":3})");
    EXPECT_EQ(rtos.exchange(R"([{"ret_val":5}])"), R"([
	{
		"msg_id" : 77,
		"param" : 3
	}
])");
    EXPECT_EQ(client.readReply(), "{\n\t\"result\" : \"RETICLE_INDEX_NOT_FOUND\"\n}");
}

}  // namespace
