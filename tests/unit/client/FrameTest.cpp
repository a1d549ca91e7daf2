#include <gtest/gtest.h>

#include "client/FrameFormat.h"
#include "client/receiveFrame.h"
#include "reticle-client/Errors.h"
#include "tests/unit/client/FakeService.h"

namespace reticle {

namespace {

using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;
using test::FakePeer;
using test::FakeService;

constexpr std::string_view SYNC(
    "\x00\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F"
    "\x10\x11\x12\x13\x14\x15\x16\x17\x18\x19\x1A\x1B\x1C\x1D\x1E\x1F",
    32);

std::string header(std::string_view length) {
    return std::string(SYNC) += length;
}

std::string receiveFrom(const FakeService& service, std::chrono::milliseconds timeout = 10s) {
    const Deadline deadline(timeout);
    Connection connection("127.0.0.1", service.port(), deadline);
    return receiveFrame(connection, deadline);
}

/// A peer that sends `bytes` and closes.
FakeService::Script sending(std::string bytes) {
    return [bytes = std::move(bytes)](FakePeer& peer) { peer.send(bytes); };
}

TEST(Frame, OfTwoBytesIsThirtyEightBytes) {
    EXPECT_EQ(encodeFrame("{}"), std::string("\x00\x01\x02\x03\x04\x05\x06\x07"
                                             "\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F"
                                             "\x10\x11\x12\x13\x14\x15\x16\x17"
                                             "\x18\x19\x1A\x1B\x1C\x1D\x1E\x1F"
                                             "\x00\x00\x00\x02{}",
                                             38));
}

TEST(Frame, LengthIsBigEndian) {
    const std::string frame = encodeFrame(std::string(0x010203, 'x'));
    EXPECT_EQ(frame.substr(32, 4), std::string("\x00\x01\x02\x03", 4));
    EXPECT_EQ(frame.size(), 36U + 0x010203U);
}

TEST(Frame, BodyIsReceived) {
    const FakeService service(sending(header({"\x00\x00\x00\x02", 4}) + "{}"));
    EXPECT_EQ(receiveFrom(service), "{}");
}

TEST(Frame, WhatFollowsABodyIsLeftAlone) {
    const FakeService service(sending(header({"\x00\x00\x00\x02", 4}) + "{}more"));
    EXPECT_EQ(receiveFrom(service), "{}");
}

TEST(Frame, ABodyOfManyMegabytesArrivesWhole) {
    std::string body(20'000'000, 'a');
    body.back() = 'z';
    const FakeService service(sending(encodeFrame(body)));
    EXPECT_TRUE(receiveFrom(service) == body);
}

TEST(Frame, AnEmptyBodyIsReceivedAsSuch) {
    const FakeService service(sending(header({"\x00\x00\x00\x00", 4})));
    EXPECT_EQ(receiveFrom(service), "");
}

TEST(Frame, EveryWrongSyncByteIsMalformed) {
    for (std::size_t position = 0; position < SYNC.size(); ++position) {
        std::string wrong = header({"\x00\x00\x00\x02", 4}) + "{}";
        wrong[position] = position == 0 ? '\x01' : '\x00';
        const FakeService service(sending(wrong));
        EXPECT_THROW(receiveFrom(service), MalformedReply) << position;
    }
}

TEST(Frame, AForeignServerIsToldAtItsFirstBytes) {
    // Fewer bytes than a header, and the connection stays open.
    const FakeService service([](FakePeer& peer) {
        peer.send("220 ready\r\n");
        peer.waitForClose();
    });
    try {
        receiveFrom(service);
        FAIL();
    } catch (const MalformedReply& error) {
        EXPECT_STREQ(error.what(),
                     "what came is not a frame of the reticle service (starts with '2': no "
                     "header): check that host and port are the service's");
    }
}

TEST(Frame, ClosedBeforeTheFirstByteIsNoReply) {
    const FakeService service([](FakePeer&) {});
    EXPECT_THROW(receiveFrom(service), NoReply);
}

TEST(Frame, ResetBeforeTheFirstByteIsNoReply) {
    const FakeService service([](FakePeer& peer) {
        // Not before the client is through with connecting.
        peer.receiveRequest();
        peer.resetOnClose();
    });
    const Deadline deadline(10s);
    Connection connection("127.0.0.1", service.port(), deadline);
    connection.send(encodeFrame("{}"), deadline);
    std::string body;
    EXPECT_THROW(body = receiveFrame(connection, deadline), NoReply);
}

TEST(Frame, CutOffInTheHeaderIsMalformed) {
    const FakeService service(sending(std::string(SYNC.substr(0, 20))));
    EXPECT_THROW(receiveFrom(service), MalformedReply);
}

TEST(Frame, CutOffInTheBodyIsMalformed) {
    const FakeService service(sending(header({"\x00\x00\x00\x09", 4}) + "{}"));
    EXPECT_THROW(receiveFrom(service), MalformedReply);
}

TEST(Frame, ALengthThatNoDeviceCanHoldIsMalformed) {
    const FakeService service([](FakePeer& peer) {
        peer.send(header({"\x40\x00\x00\x01", 4}));
        peer.waitForClose();
    });
    try {
        receiveFrom(service);
        FAIL();
    } catch (const MalformedReply& error) {
        EXPECT_STREQ(
            error.what(),
            "the reply announces 1073741825 bytes, which no device can hold: check that host "
            "and port are the service's");
    }
}

TEST(Frame, ALyingLengthEndsAtTheDeadline) {
    const FakeService service([](FakePeer& peer) {
        peer.send(header({"\x3F\xFF\xFF\xFF", 4}) + "{}");
        peer.waitForClose();
    });
    EXPECT_THROW(receiveFrom(service, 1s), NoReply);
}

TEST(Frame, DrippingBytesDoNotMoveTheDeadline) {
    const FakeService service([](FakePeer& peer) {
        peer.send(header({"\x00\x10\x00\x00", 4}));
        constexpr int PAUSE_MS = 10;
        while (!peer.hasClosed(PAUSE_MS)) {
            peer.send("x");
        }
    });
    EXPECT_THROW(receiveFrom(service, 1s), NoReply);
}

TEST(Frame, AFloodDoesNotMoveTheDeadline) {
    const FakeService service([](FakePeer& peer) {
        peer.send(header({"\x3F\xFF\xFF\xFF", 4}));
        const std::string flood(65536, 'x');
        while (!peer.hasClosed(0)) {
            peer.send(flood);
        }
    });
    EXPECT_THROW(receiveFrom(service, 1s), NoReply);
}

}  // namespace

}  // namespace reticle
