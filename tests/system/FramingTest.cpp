#include <gtest/gtest.h>

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

constexpr auto REFUSED_HEADER = "Failed to retrieve packet length\n";
constexpr auto NOT_JSON = "Error: received packet isn't json\n";

constexpr std::size_t LARGEST_BODY_BYTES = 4194303;

class FramingTest : public ForegroundTest {
protected:
    // Sends a header that must be refused, and sees that the next 36 bytes are read as a header.
    void expectRefused(std::string_view header) {
        client.sendBytes(header);
        expectServed(client, rtos);
        EXPECT_EQ(service.errors(), std::string(REFUSED_HEADER) + "json value: 6\n");
    }

    // Sends a frame with this header and a body of 29 bytes that must be accepted.
    void expectAccepted(std::string_view header) {
        client.sendBytes(header);
        client.sendBytes(GET_ALL);
        EXPECT_EQ(rtos.exchange(FULL), LIST_REQUEST);
        EXPECT_EQ(client.readReply(), FULL_REPLY);
        EXPECT_EQ(service.errors(), "json value: 6\n");
    }

    FrameClient client;
};

TEST_F(FramingTest, ZeroBytesBetweenFirstAndLastSyncByteAreAccepted) {
    expectAccepted(
        fromHex("00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 1f "
                "00 00 00 1d"));
}

TEST_F(FramingTest, LastSyncByteZeroIsRefused) {
    expectRefused(
        fromHex("00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f "
                "10 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e 00 "
                "00 00 00 1d"));
}

TEST_F(FramingTest, FirstSyncByteNotZeroIsRefused) {
    expectRefused(
        fromHex("01 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f "
                "10 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e 1f "
                "00 00 00 1d"));
}

TEST_F(FramingTest, WrongByteInTheSyncSequenceIsRefused) {
    expectRefused(
        fromHex("00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0e "
                "10 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e 1f "
                "00 00 00 1d"));
}

TEST_F(FramingTest, LengthZeroIsRefused) {
    expectRefused(FrameClient::header(0));
}

TEST_F(FramingTest, NegativeLengthIsRefused) {
    expectRefused(FrameClient::header(0x80000000));
}

TEST_F(FramingTest, LengthOf4194304IsRefused) {
    expectRefused(FrameClient::header(4194304));
}

TEST_F(FramingTest, BodyOf4194303BytesIsAccepted) {
    std::string body(GET_ALL.substr(0, GET_ALL.size() - 1));
    body.append(LARGEST_BODY_BYTES - GET_ALL.size(), ' ').append("}");
    client.sendFrame(body);
    EXPECT_EQ(rtos.exchange(FULL), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), FULL_REPLY);
    EXPECT_TRUE(service.hasProgress("json is true, length = 4194303\n"));
}

TEST_F(FramingTest, TwoFramesBackToBackGiveTwoRepliesInOrder) {
    const std::string frame = FrameClient::header(GET_ALL.size()) + std::string(GET_ALL);
    client.sendBytes(frame + frame);
    EXPECT_EQ(rtos.exchange(R"([{"ret_val":5}])"), LIST_REQUEST);
    EXPECT_EQ(rtos.exchange(R"([{"ret_val":7}])"), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), "{\n\t\"result\" : \"RETICLE_INDEX_NOT_FOUND\"\n}");
    EXPECT_EQ(client.readReply(), "{\n\t\"result\" : \"RETICLE_CANT_BE_DELETED\"\n}");
}

TEST_F(FramingTest, FrameThatArrivesByteByByteIsServed) {
    for (const char byte : FrameClient::header(GET_ALL.size()) + std::string(GET_ALL)) {
        client.sendBytes({&byte, 1});
    }
    EXPECT_EQ(rtos.exchange(FULL), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), FULL_REPLY);
}

TEST_F(FramingTest, CloseWithinTheHeaderEndsThatConnectionOnly) {
    FrameClient leaving;
    leaving.sendBytes(FrameClient::header(GET_ALL.size()).substr(0, 10));
    leaving.connection().closeWriting();
    EXPECT_TRUE(leaving.connection().seesEnd());
    // What remains: standard streams, RTOS socket, listening socket, the client that stays.
    EXPECT_TRUE(
        eventually([&] { return service.info().descriptors().size() == DESCRIPTORS_AT_REST + 1; }));
    EXPECT_EQ(service.errors(), REFUSED_HEADER);
    expectServed(client, rtos);
}

TEST_F(FramingTest, CloseBetweenFramesEndsTheConnectionWithoutAWord) {
    client.connection().closeWriting();
    EXPECT_TRUE(client.connection().seesEnd());
    EXPECT_EQ(service.errors(), "");
}

TEST_F(FramingTest, BodyCutShortByTheClientCountsAsItIs) {
    client.sendBytes(FrameClient::header(1000));
    client.sendBytes(GET_ALL);
    client.connection().closeWriting();
    EXPECT_EQ(rtos.exchange(FULL), LIST_REQUEST);
}

TEST_F(FramingTest, BodyThatIsNotJsonIsDropped) {
    client.sendFrame("{\"action\":");
    expectServed(client, rtos);
    EXPECT_EQ(service.errors(), std::string(NOT_JSON) + "json value: 6\n");
}

TEST_F(FramingTest, BodyNestedTooDeeplyIsDropped) {
    client.sendFrame(std::string(100000, '['));
    expectServed(client, rtos);
    EXPECT_EQ(service.errors(),
              std::string("Exceeded stackLimit in readValue().\n") + NOT_JSON + "json value: 6\n");
}

TEST_F(FramingTest, WhatFollowsAZeroByteIsKeptButNotJudged) {
    const std::string body = std::string(GET_ALL) + '\0' + "{{{ not json";
    client.sendFrame(body);
    EXPECT_TRUE(service.hasProgress("_handlerRoutine, json req: " + body + '\n'));
    EXPECT_EQ(rtos.exchange(FULL), LIST_REQUEST);
    EXPECT_EQ(client.readReply(), FULL_REPLY);
    EXPECT_EQ(service.errors(), "json value: 6\n");
}

TEST_F(FramingTest, BodyThatIsJsonOnlyWithWhatFollowsAZeroByteIsDropped) {
    client.sendFrame(std::string(R"({"action":"RETICLES_GET_ALL","x":"a)") + '\0' + R"(b"})");
    expectServed(client, rtos);
    EXPECT_EQ(service.errors(), std::string(NOT_JSON) + "json value: 6\n");
}

TEST_F(FramingTest, BodyThatBeginsWithAZeroByteIsDropped) {
    client.sendFrame(std::string(1, '\0') + std::string(GET_ALL));
    expectServed(client, rtos);
    EXPECT_EQ(service.errors(), std::string(NOT_JSON) + "json value: 6\n");
}

}  // namespace
