#include <gmock/gmock-matchers.h>
#include <gtest/gtest.h>
#include <json/json.h>
#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <chrono>
#include <cstddef>
#include <exception>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "client/FrameFormat.h"
#include "reticle-client/Reply.h"
#include "tests/support/FrameClient.h"
#include "tests/support/Patience.h"
#include "tests/support/Sockets.h"
#include "tests/support/Text.h"
#include "tests/system/PlayedDeviceTest.h"
#include "tests/system/Process.h"
#include "tests/system/ProcessInfo.h"
#include "tests/system/Reticlectl.h"
#include "tests/system/SystemTest.h"
#include "tests/system/TracingProcess.h"

namespace {

using reticle::encodeFrame;
using testing::HasSubstr;

constexpr auto LIST = R"({"action":"RETICLES_GET_ALL"})";
constexpr auto NO_LIST = R"({"reticles":null,"result":"OK"})";
constexpr int ANY_BUFFER = 0;
constexpr int SMALL_BUFFER_BYTES = 4096;

FrameClient tracedClient(int receiveBufferBytes = ANY_BUFFER) {
    return FrameClient(receiveBufferBytes, TracingProcess::PORT);
}

/// The real service and a simulated device behind the trace.
class TraceTest : public PlayedDeviceTest {
protected:
    static std::string activate(int index) {
        return R"({"action":"RETICLE_SET_ACTIVE","index":)" + std::to_string(index) + "}";
    }

    /// Asks for reticle after reticle to be made the active one.
    static void play(int requests) {
        constexpr int RETICLES = 8;
        FrameClient client = tracedClient();
        for (int i = 0; i < requests; ++i) {
            client.sendFrame(activate(i % RETICLES));
            const auto reply = reticle::Reply::parse(client.readReply());
            EXPECT_TRUE(reply.reticles.at(static_cast<std::size_t>(i % RETICLES)).isActive) << i;
        }
    }

    TracingProcess trace{{"--timeout", "60"}};
};

TEST_F(TraceTest, RepliesAreThoseOfTheServiceByteForByte) {
    FrameClient direct;
    FrameClient traced = tracedClient();
    for (const std::string& request :
         {std::string(LIST), activate(3), activate(99),
          std::string(R"({"action":"RETICLES_DELETE"})"),
          std::string(R"({"action":"RETICLES_DELETE","indices":[0]})")}) {
        direct.sendFrame(request);
        traced.sendFrame(request);
        EXPECT_EQ(traced.readReply(), direct.readReply()) << request;
    }
}

TEST_F(TraceTest, ThousandRequestsOfEightClientsAreAnswered) {
    constexpr int CLIENTS = 8;
    constexpr int REQUESTS = programs::HAVE_OVERHEAD ? 25 : 125;
    {
        std::vector<std::jthread> clients;
        for (int client = 0; client < CLIENTS; ++client) {
            clients.emplace_back([] {
                try {
                    play(REQUESTS);
                } catch (const std::exception& failure) {
                    ADD_FAILURE() << failure.what();
                }
            });
        }
    }
    const std::string all = std::to_string(CLIENTS * REQUESTS);
    EXPECT_EQ(trace.stop(), Reticlectl::DONE);
    EXPECT_THAT(trace.output(), HasSubstr(" 8 connections, " + all + " requests, " + all +
                                          " replies, 0 remarks\n"));
}

TEST_F(TraceTest, AnUnknownActionIsNotPassedOnAndTheConnectionGoesOn) {
    FrameClient client = tracedClient();
    client.sendFrame(R"({"action":"\u001b[2J"})");
    client.sendFrame(LIST);
    EXPECT_THAT(client.readReply(), HasSubstr("Duplex"));
    EXPECT_TRUE(service->isAlive());
    EXPECT_THAT(trace.output(), HasSubstr("#1 > \"\\x1B[2J\", 22 bytes, not passed on\n"));
    EXPECT_EQ(trace.output().find('\x1B'), std::string::npos);
}

TEST_F(TraceTest, AnUnknownActionIsNotPassedOnWhereTheClientLeavesBeforeItsEnd) {
    FrameClient client = tracedClient();
    // More is announced than comes: the service would take what there is.
    client.sendBytes(FrameClient::header(1000) + R"({"action":"EXPLODE"})");
    client.connection().closeWriting();
    EXPECT_TRUE(client.connection().seesEnd());
    EXPECT_TRUE(service->isAlive());
    EXPECT_THAT(trace.output(), HasSubstr("not passed on"));
}

TEST_F(TraceTest, PassAllPassesOnWhatEndsTheService) {
    EXPECT_EQ(trace.stop(), Reticlectl::DONE);
    const TracingProcess passing({"--pass-all"});
    FrameClient client = tracedClient();
    client.sendFrame(R"({"action":"EXPLODE"})");
    EXPECT_TRUE(client.connection().seesEnd());
    EXPECT_TRUE(service->waitForEnd());
    EXPECT_TRUE(passing.eventuallyPrints("#1 ! the service has closed the connection: "));
    EXPECT_TRUE(passing.eventuallyPrints("#1 closed by the service\n"));
}

TEST_F(TraceTest, ATakenPortIsUsage) {
    const Reticlectl second = Reticlectl::run({"trace"});
    EXPECT_EQ(second.status, Reticlectl::USAGE);
    EXPECT_EQ(second.error,
              "reticlectl: cannot listen on 127.0.0.1:3452: Address already in use: choose another "
              "address or port with --listen\n");
    for (const char* wrong : {"3452", "localhost:3452", "127.0.0.1:0", "127.0.0.1:"}) {
        EXPECT_EQ(Reticlectl::run({"trace", "--listen", wrong}).status, Reticlectl::USAGE) << wrong;
    }
}

TEST_F(TraceTest, ATraceOfItselfIsUsage) {
    const std::string port = "3453";
    for (const char* address : {"127.0.0.1:", "0.0.0.0:"}) {
        const Reticlectl itself =
            Reticlectl::run({"trace", "--listen", address + port, "--port", port});
        EXPECT_EQ(itself.status, Reticlectl::USAGE) << address;
        EXPECT_THAT(itself.error, HasSubstr("cannot trace itself: "));
    }
    const std::string ours = "192.0.2.7";
    Process assignment({"ip", "address", "add", ours + "/32", "dev", "lo"});
    EXPECT_EQ(assignment.waitForEnd(), 0);
    const Reticlectl itself =
        Reticlectl::run({"trace", "--listen", "0.0.0.0:" + port, "--host", ours, "--port", port});
    EXPECT_THAT(itself.error, HasSubstr("cannot trace itself: "));
}

/// A service that the test plays, and so sees each byte.
class TracedBytesTest : public SystemTest {
protected:
    /// The connection that the trace has opened for a client.
    [[nodiscard]] Connection accepted() const {
        return Connection(FileDescriptor(accept(listener.get(), nullptr, nullptr), "accept"));
    }

    FileDescriptor listener = sockets::listenOn(CLIENT_PORT);
    TracingProcess trace{{"--timeout", "60"}};
};

TEST_F(TracedBytesTest, ASessionPassesUnchangedBothWays) {
    FrameClient client = tracedClient();
    Connection service = accepted();
    const std::string requests = encodeFrame(LIST) + encodeFrame("no JSON") +
                                 encodeFrame(std::string(100000, '[')) +
                                 encodeFrame(R"({"action":"RETICLES_DELETE","indices":[1]})");
    const std::string replies = encodeFrame(NO_LIST) + encodeFrame("\xFF\xFE") + encodeFrame("{}");
    for (std::size_t at = 0; at < requests.size(); at += 999) {
        client.sendBytes(std::string_view(requests).substr(at, 999));
    }
    EXPECT_TRUE(service.receive(requests.size()) == requests);
    for (std::size_t at = 0; at < replies.size(); at += 7) {
        service.send(std::string_view(replies).substr(at, 7));
    }
    EXPECT_EQ(client.readBytes(replies.size()), replies);
    EXPECT_TRUE(service.isQuiet());
    EXPECT_TRUE(client.connection().isQuiet());
}

TEST_F(TracedBytesTest, WhatIsNoFramePassesUnchangedAndAtOnce) {
    FrameClient client = tracedClient();
    Connection service = accepted();
    for (const std::string& bytes :
         {std::string("{"), repeated("x", 100), encodeFrame(LIST), std::string("\xFF")}) {
        client.sendBytes(bytes);
        EXPECT_EQ(service.receive(bytes.size()), bytes);
        service.send(bytes);
        EXPECT_EQ(client.readBytes(bytes.size()), bytes);
    }
    EXPECT_TRUE(trace.eventuallyPrints("sends is no frame (starts with '{': no header): "));
}

TEST_F(TracedBytesTest, AClientThatLeavesWithinAFrameIsPassedOnWithWhatItSent) {
    const std::string part = encodeFrame(LIST).substr(0, 50);
    FrameClient client = tracedClient();
    Connection service = accepted();
    client.sendBytes(part);
    client.connection().close();
    EXPECT_EQ(service.receive(1000), part);
    EXPECT_TRUE(service.seesEnd());
    service.close();
    EXPECT_TRUE(trace.eventuallyPrints("#1 ! body cut short: 14 of 29 bytes: "));
    EXPECT_TRUE(trace.eventuallyPrints("#1 closed by the client\n"));
}

TEST_F(TracedBytesTest, AClientThatResetsEndsItsConnectionAlone) {
    FrameClient leaving = tracedClient();
    Connection left = accepted();
    FrameClient staying = tracedClient();
    Connection service = accepted();
    leaving.connection().reset();
    EXPECT_TRUE(left.seesEnd());
    staying.sendFrame(LIST);
    EXPECT_EQ(service.receive(encodeFrame(LIST).size()), encodeFrame(LIST));
    EXPECT_TRUE(trace.eventuallyPrints("#1 closed by the client, by a reset\n"));
}

TEST_F(TracedBytesTest, AServiceThatLeavesWithinAReplyClosesTheClientAndTheNextIsServed) {
    {
        FrameClient client = tracedClient();
        Connection service = accepted();
        client.sendFrame(LIST);
        EXPECT_EQ(service.receive(encodeFrame(LIST).size()), encodeFrame(LIST));
        service.send(encodeFrame(NO_LIST).substr(0, 40));
        service.close();
        EXPECT_EQ(client.readBytes(1000), encodeFrame(NO_LIST).substr(0, 40));
        EXPECT_TRUE(client.connection().seesEnd());
    }
    listener.close();
    EXPECT_TRUE(tracedClient().connection().seesEnd());
    EXPECT_TRUE(trace.eventuallyPrints(
        "#2 ! cannot connect to 127.0.0.1:3451: Connection refused: check that the reticle service "
        "runs there, and --host and --port\n"));
    listener = sockets::listenOn(CLIENT_PORT);
    FrameClient client = tracedClient();
    Connection service = accepted();
    client.sendFrame(LIST);
    EXPECT_EQ(service.receive(encodeFrame(LIST).size()), encodeFrame(LIST));
}

TEST_F(TracedBytesTest, AServiceThatDoesNotTakeTheConnectionIsGivenUp) {
    EXPECT_EQ(trace.stop(), Reticlectl::DONE);
    const TracingProcess impatient({"--timeout", "1"});
    listener.close();
    listener = sockets::listenOn(CLIENT_PORT, 0);
    const FrameClient waiting;
    EXPECT_TRUE(tracedClient().connection().seesEnd());
    EXPECT_TRUE(impatient.eventuallyPrints(
        "#1 ! cannot connect to 127.0.0.1:3451: no answer within 1 s: "));
}

TEST_F(TracedBytesTest, RepliesMayComeLateAndForNoRequest) {
    EXPECT_EQ(trace.stop(), Reticlectl::DONE);
    const TracingProcess impatient({"--timeout", "1"});
    FrameClient client = tracedClient();
    Connection service = accepted();
    client.sendFrame(LIST);
    EXPECT_TRUE(impatient.eventuallyPrints("#1 ! no reply to RETICLES_GET_ALL within 1 s: "));
    service.send(encodeFrame(NO_LIST));
    EXPECT_EQ(client.readReply(), NO_LIST);
    EXPECT_TRUE(
        impatient.eventuallyPrints("#1 < OK, 0 reticles, 31 bytes, for no request under way\n"));
}

TEST_F(TracedBytesTest, JsonHoldsTheWholeTexts) {
    EXPECT_EQ(trace.stop(), Reticlectl::DONE);
    TracingProcess json({"--json"});
    const std::string request =
        R"({"action":"RETICLES_GET_ALL","x":")" + std::string(300000, 'x') + "\"}";
    FrameClient client = tracedClient();
    Connection service = accepted();
    client.sendFrame(request);
    EXPECT_TRUE(service.receive(encodeFrame(request).size()) == encodeFrame(request));
    service.send(encodeFrame(NO_LIST));
    EXPECT_EQ(client.readReply(), NO_LIST);
    client.sendBytes("\xff\x80");
    EXPECT_EQ(service.receive(2), "\xff\x80");
    EXPECT_EQ(json.stop(), Reticlectl::DONE);
    EXPECT_THAT(json.output(), HasSubstr(R"("hex":"ff80")"));
    std::istringstream lines(json.output());
    std::vector<Json::Value> events;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream(line) >> events.emplace_back();
    }
    ASSERT_EQ(events.size(), 7U);
    EXPECT_EQ(events[2]["event"], "request");
    EXPECT_TRUE(events[2]["text"] == request);
    EXPECT_EQ(events[3]["event"], "reply");
    EXPECT_EQ(events[3]["text"], NO_LIST);
    EXPECT_EQ(events[3]["result"], "OK");
    EXPECT_TRUE(events[3]["ms"].isNumeric());
    EXPECT_EQ(events[4]["event"], "noFrame");
    EXPECT_EQ(events[5]["event"], "remark");
    EXPECT_EQ(events[6]["event"], "sum");
}

/// One side sends far more than kernels hold for a connection, and the other does not read.
class SlowTraceTest : public TracedBytesTest {
protected:
    static constexpr std::size_t FRAMES = 96;
    static constexpr std::size_t FRAME_BYTES = 1U << 20U;
    static constexpr std::size_t MEMORY_LIMIT_BYTES = 48U << 20U;

    static std::string frame(const std::string& begin) {
        return encodeFrame(begin + std::string(FRAME_BYTES, 'x') + "\"}");
    }

    /// \param begin of a body with a text at its end
    void expectAllArrivesLate(Connection& from, Connection& to, const std::string& begin) {
        const std::string bytes = frame(begin);
        std::jthread sender([&] {
            for (std::size_t i = 0; i < FRAMES; ++i) {
                from.send(bytes);
            }
        });
        // For good, not between two of its reads.
        constexpr int LOOKS = 50;
        int stillLooks = 0;
        EXPECT_TRUE(eventually([&] {
            stillLooks = isStill(from) ? stillLooks + 1 : 0;
            return stillLooks == LOOKS;
        }));
        for (std::size_t i = 0; i < FRAMES; ++i) {
            ASSERT_TRUE(to.receive(bytes.size()) == bytes) << i;
        }
        EXPECT_TRUE(programs::HAVE_OVERHEAD || peakBytes() < MEMORY_LIMIT_BYTES) << peakBytes();
    }

    /// Whether bytes wait to be taken from `sender`, and the trace for something else.
    [[nodiscard]] bool isStill(const Connection& sender) {
        int bytes = 0;
        ioctl(sender.descriptor(), SIOCOUTQ, &bytes);
        return bytes > 0 && ProcessInfo(trace.process().pid()).isAsleep();
    }

    /// The most memory that the trace has ever had.
    [[nodiscard]] std::size_t peakBytes() {
        constexpr std::size_t KB = 1024;
        return std::stoul(ProcessInfo(trace.process().pid()).status("VmHWM")) * KB;
    }
};

TEST_F(SlowTraceTest, AClientThatReadsLateGetsAllAndTheTraceStaysSmall) {
    FrameClient client = tracedClient(SMALL_BUFFER_BYTES);
    Connection service = accepted();
    expectAllArrivesLate(service, client.connection(), R"({"result":"OK","reticles":null,"x":")");
}

TEST_F(SlowTraceTest, AServiceThatReadsLateGetsAllAndTheTraceStaysSmall) {
    FrameClient client = tracedClient();
    Connection service = accepted();
    expectAllArrivesLate(client.connection(), service, R"({"action":"RETICLES_GET_ALL","x":")");
}

}  // namespace
