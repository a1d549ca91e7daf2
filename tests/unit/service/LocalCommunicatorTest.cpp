#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "rtos/LocalCommunicator.h"
#include "tests/support/Patience.h"
#include "tests/support/ScriptedRtos.h"
#include "tests/support/Text.h"
#include "tests/unit/service/DescriptorLimit.h"
#include "tests/unit/service/ExpectThrow.h"
#include "tests/unit/service/OutputCapture.h"
#include "tests/unit/service/peers/LocalCommunicatorTestPeer.h"

namespace reticled {
namespace {

using Peer = LocalCommunicatorTestPeer;

constexpr auto REQUEST = "[\n\t{\n\t\t\"msg_id\" : 76\n\t}\n]";
constexpr auto ANSWER = R"([{"ret_val":0}])";

constexpr auto NO_CONNECTION = "Error on attempt to connect to local tcp server ";
constexpr auto NO_ANSWER = "Error after receiving json from local tcp,socket closed";

class LocalCommunicatorTest : public testing::Test {
protected:
    /// Starts an exchange, which the test then answers as the RTOS.
    [[nodiscard]] std::future<std::string> exchange() {
        return std::async(std::launch::async, [this] { return link.send_and_get(REQUEST); });
    }

    /// One exchange in which the RTOS sends `answer`.
    [[nodiscard]] std::string exchange(std::string_view answer) {
        auto reply = exchange();
        EXPECT_EQ(rtos.exchange(answer), REQUEST);
        return reply.get();
    }

    [[nodiscard]] std::int64_t timeoutMicroseconds() const {
        timeval timeout{};
        socklen_t size = sizeof timeout;
        EXPECT_EQ(getsockopt(Peer::socket(link), SOL_SOCKET, SO_RCVTIMEO, &timeout, &size), 0);
        return timeout.tv_sec * std::int64_t{1'000'000} + timeout.tv_usec;
    }

    OutputCapture output;
    ScriptedRtos rtos;
    LocalCommunicator link;
};

TEST_F(LocalCommunicatorTest, ExchangeSendsTheTextAsItIsAndReturnsTheAnswer) {
    EXPECT_EQ(exchange(ANSWER), ANSWER);
    EXPECT_TRUE(rtos.isQuiet());
    EXPECT_EQ(output.out(), "send_and_get: recv json: [{\"ret_val\":0}]\n");
    EXPECT_EQ(output.err(), "");
}

/// The exchange's system calls are interrupted by signals, as often as can be.
class InterruptedExchangeTest : public LocalCommunicatorTest {
protected:
    InterruptedExchangeTest() {
        struct sigaction ignoring {};
        ignoring.sa_handler = [](int) {};
        sigaction(SIGUSR1, &ignoring, nullptr);
        std::packaged_task<std::string()> task([this] { return link.send_and_get(REQUEST); });
        reply = task.get_future();
        worker = std::jthread(std::move(task));
        EXPECT_EQ(rtos.receiveRequest(), REQUEST);
    }

    /// Interrupts until the exchange has ended.
    [[nodiscard]] testing::AssertionResult endsAlthoughInterrupted() {
        const bool isEnded = eventually([this] {
            pthread_kill(worker.native_handle(), SIGUSR1);
            return reply.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        });
        return isEnded ? testing::AssertionSuccess() : testing::AssertionFailure();
    }

    std::future<std::string> reply;
    std::jthread worker;
};

TEST_F(InterruptedExchangeTest, GoesOnAndTheNextHasFiveSecondsAgain) {
    EXPECT_TRUE(eventually([this] {
        pthread_kill(worker.native_handle(), SIGUSR1);
        return timeoutMicroseconds() < 5'000'000;
    }));
    rtos.answer(ANSWER);
    EXPECT_EQ(reply.get(), ANSWER);
    EXPECT_EQ(timeoutMicroseconds(), 5'000'000);
    EXPECT_EQ(exchange("[]"), "[]");
    EXPECT_EQ(output.err(), "");
}

TEST_F(InterruptedExchangeTest, IsNotProlonged) {
    EXPECT_TRUE(endsAlthoughInterrupted());
    expectThrow<std::runtime_error>([this] { static_cast<void>(reply.get()); }, NO_ANSWER);
    EXPECT_EQ(output.err(), "Resource temporarily unavailable: Resource temporarily unavailable\n");
    EXPECT_FALSE(Peer::isConnected(link));
}

TEST_F(LocalCommunicatorTest, CloseEndsTheLinkForGood) {
    EXPECT_EQ(exchange(ANSWER), ANSWER);
    link.close();
    EXPECT_TRUE(rtos.link().seesEnd());
    EXPECT_FALSE(Peer::isConnected(link));
    expectThrow<std::runtime_error>([this] { static_cast<void>(link.send_and_get(REQUEST)); },
                                    NO_CONNECTION);
}

TEST(LocalCommunicatorWithoutRtosTest, SocketThatCannotBeHadIsReportedAndEveryExchangeFails) {
    const OutputCapture output;
    {
        std::optional<NoSpareDescriptor> noDescriptor(std::in_place);
        LocalCommunicator link;
        noDescriptor.reset();
        EXPECT_EQ(output.out(), "Error on opening of local tcp socket \n");
        EXPECT_EQ(output.err(),
                  "Too many open files: Too many open files\n"
                  "Bad file descriptor: Bad file descriptor\n");
        expectThrow<std::runtime_error>([&] { static_cast<void>(link.send_and_get(REQUEST)); },
                                        NO_CONNECTION);
    }
    EXPECT_EQ(output.out(),
              "Error on opening of local tcp socket \n"
              "Error on close local tcp socket \n");
    EXPECT_EQ(output.err(), "Too many open files: Too many open files\n" +
                                repeated("Bad file descriptor: Bad file descriptor\n", 3));
}

}  // namespace
}  // namespace reticled
