#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "tests/support/FrameClient.h"
#include "tests/support/Text.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundTest.h"

namespace {

using exchanges::GET_ALL;
using exchanges::LIST_ANSWER;
using exchanges::LIST_REQUEST;

constexpr int SMALL_BUFFER_BYTES = 4096;
constexpr std::size_t RETICLE_BYTES = 6000000;
constexpr std::uint32_t LONGER_THAN_SENT = 1000;

using LostClientsTest = ForegroundTest;

TEST_F(LostClientsTest, ClientThatResetsWithinAReplyIsReportedAndTheOthersAreServed) {
    flash.write("list.json", exchanges::ONE_DOT_LIST);
    flash.write("reticle/dot.svg", std::string(RETICLE_BYTES, 'x'));
    FrameClient other;
    for (std::size_t lost = 1; lost <= 3; ++lost) {
        FrameClient leaving(SMALL_BUFFER_BYTES);
        leaving.sendFrame(GET_ALL);
        EXPECT_EQ(rtos.exchange(LIST_ANSWER), LIST_REQUEST);
        EXPECT_EQ(leaving.readBytes(1).size(), 1);
        leaving.connection().reset();
        EXPECT_TRUE(service.hasError("Error during send response for socket: ", lost));
        exchanges::expectServed(other, rtos);
    }
    EXPECT_TRUE(service.isAlive());
}

TEST_F(LostClientsTest, ClientThatResetsWithinABodyIsReported) {
    FrameClient other;
    FrameClient leaving;
    leaving.sendBytes(FrameClient::header(GET_ALL.size()));
    EXPECT_TRUE(service.hasProgress("json is true, length = 29\n"));
    leaving.connection().reset();
    EXPECT_TRUE(service.hasError("Connection reset by peer: Connection reset by peer\n"));
    exchanges::expectServed(other, rtos);
    EXPECT_EQ(service.errors(),
              "Connection reset by peer: Connection reset by peer\n"
              "json value: 6\n");
}

TEST_F(LostClientsTest, WhatCameOfABodyBeforeAResetCountsAsItIs) {
    FrameClient leaving;
    leaving.sendBytes(FrameClient::header(LONGER_THAN_SENT) + std::string(GET_ALL));
    leaving.connection().reset();
    EXPECT_EQ(rtos.exchange(exchanges::FULL), LIST_REQUEST);
    EXPECT_TRUE(service.hasError("Connection reset by peer: Connection reset by peer\n"));
}

TEST_F(LostClientsTest, ClientsThatAskAndLeaveAtOnceDoNoHarm) {
    constexpr int VISITS = 30;
    for (int i = 0; i < VISITS; ++i) {
        FrameClient leaving;
        leaving.sendFrame(GET_ALL);
        EXPECT_EQ(rtos.receiveRequest(), LIST_REQUEST);
        leaving.connection().reset();
        rtos.answer(exchanges::FULL);
    }
    FrameClient other;
    exchanges::expectServed(other, rtos);
}

}  // namespace
