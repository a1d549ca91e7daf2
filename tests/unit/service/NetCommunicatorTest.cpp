#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <future>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "net/NetCommunicator.h"
#include "tests/support/Connection.h"
#include "tests/support/FrameClient.h"
#include "tests/support/Patience.h"
#include "tests/support/Ports.h"
#include "tests/support/Text.h"
#include "tests/unit/service/DescriptorLimit.h"
#include "tests/unit/service/ExpectThrow.h"
#include "tests/unit/service/LinkSeams.h"
#include "tests/unit/service/OutputCapture.h"
#include "tests/unit/service/OwnProcess.h"
#include "tests/unit/service/peers/NetCommunicatorTestPeer.h"

namespace reticled {
namespace {

using Peer = NetCommunicatorTestPeer;
using Bodies = std::vector<std::string>;

constexpr std::string_view SYNC =
    "00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F "
    "10 11 12 13 14 15 16 17 18 19 1A 1B 1C 1D 1E 1F ";

/// The two ends of a connection.
struct Pair {
    FileDescriptor service;
    Connection client;
};

Pair connectedPair() {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) < 0) {
        throw std::system_error(errno, std::generic_category(), "socketpair");
    }
    return {FileDescriptor(ends[0], "socketpair"),
            Connection(FileDescriptor(ends[1], "socketpair"))};
}

std::string frame(std::string_view sync, std::string_view length, std::string_view body) {
    return fromHex(std::string(sync) + std::string(length)) + std::string(body);
}

/// A server whose requests and replies the test takes and gives in the worker's place.
class NetCommunicatorTest : public testing::Test {
protected:
    NetCommunicatorTest() { Peer::useStorage(net, storage); }

    /// All requests that are queued.
    [[nodiscard]] std::vector<std::shared_ptr<Packet>> queuedRequests() const {
        const auto end = std::make_shared<Packet>(0, "");
        storage->push(REQUEST_QUEUE, end);
        std::vector<std::shared_ptr<Packet>> requests;
        for (auto request = storage->pop(REQUEST_QUEUE); request != end;
             request = storage->pop(REQUEST_QUEUE)) {
            requests.push_back(request);
        }
        return requests;
    }

    /// Plays a client that sends `bytes` and leaves. \return the bodies that its reader queued.
    Bodies read(const std::string& bytes) {
        Pair pair = connectedPair();
        descriptor = dup(pair.service.get());
        pair.service.close();
        const std::jthread client([&] {
            pair.client.send(bytes);
            pair.client.closeWriting();
        });
        Peer::clientRoutine(net, descriptor);
        Bodies bodies;
        for (const auto& request : queuedRequests()) {
            EXPECT_EQ(request->_socket, descriptor);
            bodies.push_back(request->_data);
        }
        return bodies;
    }

    void queueReply(int socket, std::string text) const {
        storage->push(RESPONSE_QUEUE, std::make_shared<Packet>(socket, std::move(text)));
    }

    OutputCapture output;
    std::shared_ptr<PacketStorage> storage = std::make_shared<PacketStorage>();
    NetCommunicator net;
    int descriptor = -1;  ///< of the last connection that was read
};

TEST_F(NetCommunicatorTest, FrameBecomesARequestWithTheConnectionsDescriptor) {
    EXPECT_EQ(read(frame(SYNC, "00 00 00 0B", R"({"a":"b"}  )")), Bodies{R"({"a":"b"}  )"});
    EXPECT_EQ(output.out(), "total cnt = 32\njson is true, length = 11\n");
    EXPECT_EQ(output.err(), "");
}

TEST_F(NetCommunicatorTest, ClientThatLeavesAfterAHeaderCostsNothing) {
    EXPECT_EQ(read(frame(SYNC, "00 00 00 02", "")), Bodies{});
    EXPECT_EQ(output.err(), "");
}

TEST_F(NetCommunicatorTest, StoppedServerReadsNoMoreAndClosesTheConnection) {
    Pair pair = connectedPair();
    pair.client.send(frame(SYNC, "00 00 00 02", "{}"));
    pair.client.closeWriting();
    Peer::stop(net);
    Peer::clientRoutine(net, dup(pair.service.get()));
    pair.service.close();
    EXPECT_TRUE(queuedRequests().empty());
    EXPECT_TRUE(pair.client.seesEnd());
    EXPECT_EQ(output.out(), "");
}

TEST_F(NetCommunicatorTest, ErrorsOfReceivingAndClosingAreReported) {
    Peer::clientRoutine(net, -1);
    EXPECT_EQ(output.err(), repeated("Bad file descriptor: Bad file descriptor\n", 2));
}

TEST_F(NetCommunicatorTest, BodyThatThereIsNoMemoryForCostsItsClientTheConnection) {
    const seams::MemoryShortage shortage(1'000'000);
    EXPECT_EQ(read(frame(SYNC, "00 0F 42 40", "")), Bodies{});
    EXPECT_EQ(output.err(), "_clientRoutine, exception: std::bad_alloc\n");
    // One byte less is there.
    EXPECT_EQ(read(frame(SYNC, "00 0F 42 3F", "{}")), Bodies{"{}"});
}

TEST_F(NetCommunicatorTest, ReaderThatThereIsNoMemoryForCostsItsClientTheConnection) {
    Pair pair = connectedPair();
    const int service = dup(pair.service.get());
    pair.service.close();
    {
        const seams::MemoryShortage shortage(1);
        Peer::startReader(net, service);
    }
    EXPECT_TRUE(pair.client.seesEnd());
    EXPECT_EQ(output.err(), "_serverRoutine, exception: std::bad_alloc\n");
}

TEST_F(NetCommunicatorTest, LargeReplyGoesOutAsAFrameToo) {
    Pair pair = connectedPair();
    const std::string text = "[" + std::string(99'998, ' ') + "]";
    queueReply(pair.service.get(), text);
    auto received = std::async(std::launch::async, [&] { return pair.client.receive(100'036); });
    Peer::sendNextReply(net);
    EXPECT_TRUE(received.get() == frame(SYNC, "00 01 86 A0", text));
    EXPECT_TRUE(pair.client.isQuiet());
    EXPECT_EQ(output.err(), "");
}

TEST_F(NetCommunicatorTest, LargeReplyToAClientThatHasLeftIsReportedOnce) {
    Pair gone = connectedPair();
    gone.client.close();
    queueReply(gone.service.get(), std::string(100'000, ' '));
    Peer::sendNextReply(net);
    EXPECT_EQ(output.err(),
              "Error during send response for socket: " + std::to_string(gone.service.get()) +
                  "\nBroken pipe: Broken pipe\n");
}

// Its reader would otherwise take the next frame for the rest of the body.
TEST_F(NetCommunicatorTest, ReplyThatFailsBehindItsHeaderEndsTheConnection) {
    static constexpr unsigned BODY_BYTES = 100'000;
    Pair pair = connectedPair();
    queueReply(pair.service.get(), std::string(BODY_BYTES, ' '));
    std::jthread([this] {
        refuseSystemCall(SYS_sendto, ENOBUFS, BODY_BYTES);
        Peer::sendNextReply(net);
    }).join();
    EXPECT_EQ(pair.client.receive(37), frame(SYNC, "00 01 86 A0", ""));
    char byte = 0;
    EXPECT_EQ(recv(pair.service.get(), &byte, 1, MSG_DONTWAIT), 0);
    EXPECT_EQ(output.err(),
              "Error during send response for socket: " + std::to_string(pair.service.get()) +
                  "\nNo buffer space available: No buffer space available\n");
}

TEST_F(NetCommunicatorTest, ReplyThatFailsBeforeItsFirstByteLeavesTheConnectionOpen) {
    static constexpr unsigned FRAME_BYTES = 38;
    Pair pair = connectedPair();
    queueReply(pair.service.get(), "{}");
    queueReply(pair.service.get(), "[1]");
    std::jthread([this] {
        refuseSystemCall(SYS_sendto, ENOBUFS, FRAME_BYTES);
        Peer::sendNextReply(net);
    }).join();
    Peer::sendNextReply(net);
    EXPECT_EQ(pair.client.receive(39), frame(SYNC, "00 00 00 03", "[1]"));
}

TEST_F(NetCommunicatorTest, ReplyForSocketZeroIsDroppedWithoutAMessage) {
    queueReply(0, "{}");
    Peer::sendNextReply(net);
    EXPECT_EQ(output.out(), "responseThread: msg to send = {}\n");
    EXPECT_EQ(output.err(), "");
}

TEST_F(NetCommunicatorTest, ReplyThatThereIsNoMemoryForIsLostAndTheNextGoesOut) {
    Pair pair = connectedPair();
    std::string tooLarge(60'000, ' ');
    std::jthread responses([this] { Peer::responseThread(net); });
    {
        const seams::MemoryShortage shortage(tooLarge.size());
        queueReply(pair.service.get(), std::move(tooLarge));
        queueReply(pair.service.get(), "{}");
        EXPECT_EQ(pair.client.receive(38), frame(SYNC, "00 00 00 02", "{}"));
    }
    EXPECT_EQ(output.err(), "responseThread, exception: std::bad_alloc\n");
    Peer::stop(net);
    queueReply(0, "the last, which nobody gets");
    responses.join();
}

TEST_F(NetCommunicatorTest, SocketListensAsTheServiceNeedsIt) {
    EXPECT_TRUE(isListening(CLIENT_PORT));
    const auto option = [this](int name) {
        int value = 0;
        socklen_t size = sizeof value;
        EXPECT_EQ(getsockopt(Peer::serverSocket(net), SOL_SOCKET, name, &value, &size), 0);
        return value;
    };
    EXPECT_EQ(option(SO_REUSEPORT), 1);
    EXPECT_EQ(option(SO_ACCEPTCONN), 1);
    // The kernel grants at most its own limit, and doubles it.
    const int limit = std::stoi(contentOfFile("/proc/sys/net/core/rmem_max"));
    EXPECT_EQ(option(SO_RCVBUF), 2 * std::min(4'194'304, limit));
}

TEST_F(NetCommunicatorTest, JoinWithoutAServerThreadReturnsAtOnce) {
    net.join();
}

TEST(NetCommunicatorPortTest, SocketThatCannotBeHadFailsTheConstruction) {
    // Components that need descriptors are there before.
    const auto components = PacketsHandler::getInstance();
    const OutputCapture output;
    std::optional<NoSpareDescriptor> noDescriptor(std::in_place);
    expectThrow<std::runtime_error>([] { const NetCommunicator net; },
                                    "Failed to set REUSE_PORT option");
    noDescriptor.reset();
    EXPECT_EQ(output.err(), "Bad file descriptor: Bad file descriptor\n");
}

/// A server that accepts.
class AcceptingNetCommunicatorTest : public NetCommunicatorTest {
protected:
    AcceptingNetCommunicatorTest() { Peer::startServerThread(net); }

    /// Ends the server thread, which the server waits for. Readers are detached: none may be left
    /// when the server goes.
    void TearDown() override {
        Peer::stop(net);
        shutdown(Peer::serverSocket(net), SHUT_RDWR);
        EXPECT_TRUE(eventually([this] { return openDescriptors() <= _descriptorsAtStart; }));
    }

    [[nodiscard]] std::shared_ptr<Packet> nextRequest() const {
        auto request =
            std::async(std::launch::async, [this] { return storage->pop(REQUEST_QUEUE); });
        if (request.wait_for(PATIENCE) == std::future_status::timeout) {
            ADD_FAILURE() << "no request is queued";
            storage->push(REQUEST_QUEUE, std::make_shared<Packet>(0, ""));
        }
        return request.get();
    }

private:
    std::size_t _descriptorsAtStart = openDescriptors();
};

TEST_F(AcceptingNetCommunicatorTest,
       ConnectionsAreKeptAliveForFourMinutesBehindAClientThatHasVanished) {
    FrameClient client;
    client.sendFrame("[1]");
    const int socket = nextRequest()->_socket;
    const auto option = [socket](int level, int name) {
        int value = 0;
        socklen_t size = sizeof value;
        EXPECT_EQ(getsockopt(socket, level, name, &value, &size), 0);
        return value;
    };
    EXPECT_EQ(option(SOL_SOCKET, SO_KEEPALIVE), 1);
    EXPECT_EQ(option(IPPROTO_TCP, TCP_KEEPIDLE) +
                  option(IPPROTO_TCP, TCP_KEEPCNT) * option(IPPROTO_TCP, TCP_KEEPINTVL),
              240);
    // Small replies must not wait for the client's acknowledgements.
    EXPECT_EQ(option(IPPROTO_TCP, TCP_NODELAY), 1);
}

/// A server whose every `accept` fails.
class FailingAcceptTest : public NetCommunicatorTest {
protected:
    using Clock = std::chrono::steady_clock;
    static constexpr auto PAUSE = std::chrono::milliseconds(10);

    /// How often `accept` can have been tried by now, if each failure is followed by the pause.
    [[nodiscard]] std::size_t mostWithPauses() const {
        return 1 + static_cast<std::size_t>((Clock::now() - start) / PAUSE);
    }

    /// Lets `accept` fail with `error` until `holds`, which is given the number of times.
    void failUntil(int error, const std::function<bool(std::size_t failures)>& holds) {
        const std::string reason = std::generic_category().message(error);
        const OutputCapture own;
        start = Clock::now();
        const std::jthread server([&] {
            refuseSystemCall(SYS_accept, error);
            Peer::serverRoutine(net);
        });
        EXPECT_TRUE(
            eventually([&] { return holds(countOf(reason + ": " + reason + '\n', own.err())); }));
        Peer::stop(net);
    }

    Clock::time_point start;
};

TEST_F(FailingAcceptTest, ShortageIsFollowedByAPause) {
    constexpr std::size_t FAILURES = 3;
    for (const int error : {EMFILE, ENFILE, ENOBUFS, ENOMEM}) {
        Peer::resume(net);
        std::size_t counted = 0;
        failUntil(error, [&](std::size_t failures) {
            counted = failures;
            return failures >= FAILURES;
        });
        EXPECT_LE(counted, mostWithPauses()) << error;
    }
}

TEST_F(FailingAcceptTest, OtherErrorIsFollowedByTheNextAttemptAtOnce) {
    failUntil(ECONNABORTED, [this](std::size_t failures) { return failures > mostWithPauses(); });
}

TEST_F(AcceptingNetCommunicatorTest, JoinWaitsForTheServerThread) {
    auto joined = std::async(std::launch::async, [this] { net.join(); });
    EXPECT_EQ(joined.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    Peer::stop(net);
    shutdown(Peer::serverSocket(net), SHUT_RDWR);
    EXPECT_EQ(joined.wait_for(PATIENCE), std::future_status::ready);
    // Nothing is left to wait for.
    net.join();
}

TEST(NetCommunicatorEndTest, PortThatIsClosedAlreadyIsReported) {
    const OutputCapture output;
    {
        const NetCommunicator net;
        close(Peer::serverSocket(net));
    }
    EXPECT_EQ(output.err(), "Bad file descriptor: Bad file descriptor\n");
}

TEST(NetCommunicatorEndTest, DestructionWaitsForTheServerThreadAndClosesThePort) {
    const OutputCapture output;
    auto owner = std::make_unique<NetCommunicator>();
    NetCommunicator& net = *owner;
    Peer::startServerThread(net);
    const int socket = Peer::serverSocket(net);
    auto destruction = std::async(std::launch::async, [&] { owner.reset(); });
    EXPECT_EQ(destruction.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    EXPECT_TRUE(isListening(CLIENT_PORT));
    Peer::stop(net);
    shutdown(socket, SHUT_RDWR);
    EXPECT_EQ(destruction.wait_for(PATIENCE), std::future_status::ready);
    EXPECT_FALSE(isListening(CLIENT_PORT));
}

/// Expects that a server cannot be constructed, and leaves nothing open, where the kernel refuses a
/// system call with EPERM.
void expectFailureWithout(unsigned systemCall, std::optional<unsigned> thirdArgument,
                          const std::string& text) {
    OwnProcess process([&]() -> int {
        // Components that need descriptors are there before.
        const auto components = PacketsHandler::getInstance();
        const std::size_t before = openDescriptors();
        refuseSystemCall(systemCall, EPERM, thirdArgument);
        try {
            const NetCommunicator net;
        } catch (const std::runtime_error& failure) {
            std::cout << failure.what() << std::endl;
        }
        // The worker still waits for a request.
        endAtOnce(openDescriptors() == before ? EXIT_SUCCESS : EXIT_FAILURE);
    });
    EXPECT_EQ(process.waitForEnd(), EXIT_SUCCESS);
    EXPECT_EQ(process.out(), text + '\n');
    EXPECT_EQ(process.err(), "Operation not permitted: Operation not permitted\n");
}

TEST(NetCommunicatorDeathTest, OptionThatCannotBeSetFailsTheConstruction) {
    expectFailureWithout(SYS_setsockopt, SO_REUSEPORT, "Failed to set REUSE_PORT option");
    expectFailureWithout(SYS_setsockopt, SO_RCVBUF, "Failed to set rcv buffer size");
}

TEST(NetCommunicatorDeathTest, BindThatFailsFailsTheConstruction) {
    expectFailureWithout(SYS_bind, std::nullopt, "Cannot bind server socker to PORT 3451");
}

TEST(NetCommunicatorDeathTest, ListenThatFailsFailsTheConstruction) {
    expectFailureWithout(SYS_listen, std::nullopt,
                         "Error during attemp to move the socket in listen state");
}

TEST(NetCommunicatorDeathTest, ReaderThatCannotBeStartedCostsItsClientTheConnection) {
    OwnProcess process([]() -> int {
        NetCommunicator net;
        refuseSystemCall(SYS_clone3, EAGAIN);
        refuseSystemCall(SYS_clone, EAGAIN);
        Pair pair = connectedPair();
        Peer::startReader(net, dup(pair.service.get()));
        pair.service.close();
        endAtOnce(pair.client.seesEnd() ? EXIT_SUCCESS : EXIT_FAILURE);
    });
    EXPECT_EQ(process.waitForEnd(), EXIT_SUCCESS);
    EXPECT_EQ(process.err(), "_serverRoutine, exception: Resource temporarily unavailable\n");
}

}  // namespace
}  // namespace reticled
