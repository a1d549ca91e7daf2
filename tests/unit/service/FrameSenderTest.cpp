#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <future>
#include <numeric>
#include <thread>
#include <vector>

#include "net/FrameSender.h"
#include "tests/support/Connection.h"
#include "tests/support/FileDescriptor.h"
#include "tests/support/Patience.h"
#include "tests/support/Sockets.h"
#include "tests/unit/service/DescriptorLimit.h"
#include "tests/unit/service/OwnProcess.h"

namespace reticled {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::uint16_t PORT = 4000;
constexpr std::size_t LARGE_BYTES = 1'000'000;

std::vector<std::uint8_t> frameOf(std::size_t bytes) {
    std::vector<std::uint8_t> frame(bytes);
    std::iota(frame.begin(), frame.end(), std::uint8_t{0});
    return frame;
}

std::string textOf(const std::vector<std::uint8_t>& frame) {
    return {frame.begin(), frame.end()};
}

/// The service's end and the client's end of a connection, with small buffers between.
class FrameSenderTest : public testing::Test {
protected:
    FrameSenderTest() {
        const FileDescriptor listener = sockets::listenOn(PORT);
        client = Connection(sockets::connectTo(PORT, SMALL_BUFFER_BYTES));
        service = FileDescriptor(accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC), "accept");
        setSendBuffer(SMALL_BUFFER_BYTES);
    }

    void setSendBuffer(int bytes) const {
        setsockopt(service.get(), SOL_SOCKET, SO_SNDBUF, &bytes, sizeof bytes);
    }

    [[nodiscard]] int send(const std::vector<std::uint8_t>& frame,
                           std::chrono::milliseconds stallLimit = PATIENCE) const {
        return FrameSender(service.get(), stallLimit).send(frame);
    }

    [[nodiscard]] std::future<int> sendMeanwhile(
        const std::vector<std::uint8_t>& frame,
        std::chrono::milliseconds stallLimit = PATIENCE) const {
        return std::async(std::launch::async, [=, this] { return send(frame, stallLimit); });
    }

    static constexpr int SMALL_BUFFER_BYTES = 65536;

    FileDescriptor service;
    Connection client;
};

TEST_F(FrameSenderTest, FrameThatFitsTheBuffersGoesOutAtOnce) {
    EXPECT_EQ(send({1, 2, 3}), 0);
    EXPECT_EQ(client.receive(3), "\x01\x02\x03");
    EXPECT_TRUE(client.isQuiet());
}

TEST_F(FrameSenderTest, EmptyFrameSendsNothing) {
    EXPECT_EQ(send({}), 0);
    EXPECT_TRUE(client.isQuiet());
}

TEST_F(FrameSenderTest, FrameThatIsLargerThanTheBuffersGoesOutWhole) {
    const auto frame = frameOf(LARGE_BYTES);
    auto sent = sendMeanwhile(frame);
    EXPECT_TRUE(client.receive(LARGE_BYTES) == textOf(frame));
    EXPECT_EQ(sent.get(), 0);
    EXPECT_TRUE(client.isQuiet());
}

TEST_F(FrameSenderTest, ClientThatTakesNothingIsGivenUpAndShutDown) {
    constexpr auto LIMIT = 200ms;
    const auto start = Clock::now();
    EXPECT_EQ(send(frameOf(LARGE_BYTES), LIMIT), ETIMEDOUT);
    EXPECT_GE(Clock::now() - start, LIMIT);
    // The reader thread of the connection is waiting for bytes: this is how it learns of the end.
    char byte = 0;
    EXPECT_EQ(recv(service.get(), &byte, 1, MSG_DONTWAIT), 0);
    EXPECT_TRUE(client.seesEnd());
}

TEST_F(FrameSenderTest, ClientThatStallsHalfWayIsGivenUp) {
    auto sent = sendMeanwhile(frameOf(LARGE_BYTES), 3s);
    EXPECT_EQ(client.receive(LARGE_BYTES / 2).size(), LARGE_BYTES / 2);
    EXPECT_EQ(sent.get(), ETIMEDOUT);
}

TEST_F(FrameSenderTest, ClientThatKeepsTakingLittleByLittleIsServedToTheEnd) {
    constexpr auto LIMIT = 2s;
    constexpr auto PAUSE = 40ms;
    constexpr std::size_t MORSEL_BYTES = 4096;
    // The kernel calls this buffer writable when a third of it is free, which takes this client
    // longer than the limit.
    setSendBuffer(400'000);
    const auto frame = frameOf(1'400'000);
    const auto start = Clock::now();
    auto sent = sendMeanwhile(frame, LIMIT);
    std::string received;
    while (sent.wait_for(PAUSE) == std::future_status::timeout) {
        received += client.receive(MORSEL_BYTES);
    }
    EXPECT_EQ(sent.get(), 0);
    EXPECT_GT(Clock::now() - start, 2 * LIMIT);
    received += client.receive(frame.size() - received.size());
    EXPECT_TRUE(received == textOf(frame));
}

// As a kernel that is short of memory does.
TEST_F(FrameSenderTest, WritableConnectionThatTakesNothingBurnsNoProcessorTime) {
    constexpr auto LIMIT = 1000ms;
    int error = 0;
    std::chrono::nanoseconds processorTime{};
    std::jthread([&] {
        refuseSystemCall(SYS_sendto, EAGAIN);
        error = send({1, 2, 3}, LIMIT);
        timespec used{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
        processorTime = std::chrono::seconds(used.tv_sec) + std::chrono::nanoseconds(used.tv_nsec);
    }).join();
    EXPECT_EQ(error, ETIMEDOUT);
    EXPECT_LT(processorTime, LIMIT / 10);
    EXPECT_TRUE(client.seesEnd());
}

TEST_F(FrameSenderTest, ClosedDescriptorIsAnError) {
    const int number = service.get();
    service.close();
    EXPECT_EQ(FrameSender(number).send(frameOf(2)), EBADF);
}

// Without SIGPIPE: the process would not survive it.
TEST_F(FrameSenderTest, ClientThatHasGoneIsAnError) {
    client.reset();
    ASSERT_TRUE(eventually([&] { return send(frameOf(2)) != 0; }));
    EXPECT_EQ(send(frameOf(2)), EPIPE);
}

TEST_F(FrameSenderTest, ClientThatGoesMeanwhileIsAnError) {
    auto sent = sendMeanwhile(frameOf(LARGE_BYTES));
    EXPECT_EQ(client.receive(LARGE_BYTES / 2).size(), LARGE_BYTES / 2);
    client.reset();
    const int error = sent.get();
    EXPECT_TRUE(error == ECONNRESET || error == EPIPE) << error;
}

TEST_F(FrameSenderTest, NewOwnerOfTheNumberGetsNothingOfTheFrame) {
    const auto frame = frameOf(LARGE_BYTES);
    auto sent = sendMeanwhile(frame);
    const std::string start = client.receive(1);

    std::array<int, 2> pair{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair.data()), 0);
    const FileDescriptor newOwner(pair[0], "socketpair");
    Connection newClient(FileDescriptor(pair[1], "socketpair"));
    ASSERT_EQ(dup3(newOwner.get(), service.get(), O_CLOEXEC), service.get());

    EXPECT_TRUE(start + client.receive(LARGE_BYTES - 1) == textOf(frame));
    EXPECT_EQ(sent.get(), 0);
    EXPECT_TRUE(newClient.isQuiet());
    // The connection has ended: its own number was the last but for the sender's.
    EXPECT_TRUE(client.seesEnd());
}

TEST_F(FrameSenderTest, NoDescriptorIsKept) {
    const std::size_t before = openDescriptors();
    EXPECT_EQ(send(frameOf(2)), 0);
    EXPECT_EQ(send(frameOf(LARGE_BYTES), 1ms), ETIMEDOUT);
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(FrameSenderTest, FrameGoesOutAlsoWhenNoDescriptorCanBeSpared) {
    const std::size_t before = openDescriptors();
    const std::vector<std::uint8_t> frame{7};
    const int socket = service.get();
    {
        // Nothing here may need a descriptor, as checks of the sanitizers do.
        const NoSpareDescriptor none;
        EXPECT_EQ(FrameSender(socket).send(frame), 0);
    }
    EXPECT_EQ(client.receive(1), "\x07");
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(FrameSenderTest, ServiceGrantsAStalledClientHalfAMinute) {
    EXPECT_EQ(STALL_LIMIT, 30s);
}

}  // namespace
}  // namespace reticled
