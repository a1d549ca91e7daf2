#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <future>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <asio/post.hpp>

#include "simulator/device/Device.h"
#include "simulator/device/FaultyDevice.h"
#include "simulator/device/Storage.h"
#include "simulator/link/RequestSplitter.h"
#include "simulator/link/Server.h"
#include "tests/support/Patience.h"
#include "tests/unit/simulator/LoopbackClient.h"
#include "tests/unit/simulator/TemporaryRoot.h"

namespace sim {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using test::LoopbackClient;

constexpr const char* LIST = R"([{"msg_id":76,"param_get":""}])";
constexpr const char* LISTED = R"([{"param":"reticle_list.json","ret_val":0}])";
constexpr const char* ACTIVATE_99 = R"([{"msg_id":77,"param":99}])";
constexpr const char* ACTIVATE_3 = R"([{"msg_id":77,"param":3}])";
constexpr const char* NOT_FOUND = R"([{"ret_val":5}])";
constexpr const char* NOT_UNDERSTOOD = R"([{"ret_val":8}])";

/// A whole simulator, its server on a thread of its own.
class RunningSimulator {
public:
    explicit RunningSimulator(const std::vector<Fault>& faults = {})
        : _faulty(_device, _storage, faults) {
        _server.start([this](const std::string& request) { return _faulty.exchange(request); });
        _thread = std::thread([this] { _io.run(); });
    }

    ~RunningSimulator() { stop(); }
    RunningSimulator(const RunningSimulator&) = delete;
    RunningSimulator(RunningSimulator&&) = delete;
    RunningSimulator& operator=(const RunningSimulator&) = delete;
    RunningSimulator& operator=(RunningSimulator&&) = delete;

    void stop() {
        _io.stop();
        if (_thread.joinable()) {
            _thread.join();
        }
    }

    [[nodiscard]] std::uint16_t port() const { return _server.port(); }

    [[nodiscard]] std::string listFile() const { return _root.read("reticle_list.json"); }

    /// Lets it go down, and returns once it has, or once it is up again.
    void restart(milliseconds down, bool isAwaited) {
        std::promise<void> done;
        asio::post(_io, [this, down, isAwaited, &done] {
            _server.restart(down, [isAwaited, &done] {
                if (isAwaited) {
                    done.set_value();
                }
            });
            if (!isAwaited) {
                done.set_value();
            }
        });
        done.get_future().get();
    }

    /// After `stop`.
    [[nodiscard]] std::string log() const { return _log.str(); }

private:
    test::TemporaryRoot _root;
    Storage _storage{_root.path()};
    Device _device{_storage, {}};
    std::ostringstream _log;
    FaultyDevice _faulty;
    asio::io_context _io;
    Server _server{_io, 0, _log};
    std::thread _thread;
};

TEST(Server, AnswersExchangeAfterExchangeInOnePieceEach) {
    const RunningSimulator simulator;
    LoopbackClient client(simulator.port());
    EXPECT_EQ(client.exchange(LIST), LISTED);
    EXPECT_EQ(client.exchange(ACTIVATE_99), NOT_FOUND);
    EXPECT_EQ(client.exchange(LIST), LISTED);
}

TEST(Server, AnswersARequestThatArrivesInPieces) {
    const RunningSimulator simulator;
    LoopbackClient client(simulator.port());
    for (const char* character = LIST; *character != '\0'; ++character) {
        client.send(std::string(1, *character));
    }
    EXPECT_EQ(client.receive(), LISTED);
}

TEST(Server, AnswersRequestsThatArriveAtOnceInTheirOrder) {
    const RunningSimulator simulator;
    LoopbackClient client(simulator.port());
    client.send(std::string(ACTIVATE_99) + "\n" + LIST + ACTIVATE_99);
    const std::string expected = std::string(NOT_FOUND) + LISTED + NOT_FOUND;
    std::string received;
    while (received.size() < expected.size()) {
        received += client.receive();
    }
    EXPECT_EQ(received, expected);
}

TEST(Server, AnswersThousandsOfRequestsThatArriveAtOnce) {
    constexpr std::size_t REQUESTS = 5'000;
    const RunningSimulator simulator;
    LoopbackClient client(simulator.port());
    std::thread sender([&client] {
        std::string requests;
        for (std::size_t count = 0; count < REQUESTS; ++count) {
            requests += R"([{"msg_id":77,"param":99}])";
        }
        client.send(requests);
    });
    std::size_t received = 0;
    while (received < REQUESTS * std::string(NOT_FOUND).size()) {
        received += client.receive().size();
    }
    sender.join();
}

TEST(Server, AnswersSeveralConnectionsAtATime) {
    const RunningSimulator simulator;
    LoopbackClient first(simulator.port());
    LoopbackClient second(simulator.port());
    EXPECT_EQ(second.exchange(LIST), LISTED);
    EXPECT_EQ(first.exchange(LIST), LISTED);
}

TEST(Server, GoesOnAfterBytesThatAreNoRequest) {
    const RunningSimulator simulator;
    LoopbackClient client(simulator.port());
    EXPECT_EQ(client.exchange("hello"), NOT_UNDERSTOOD);
    EXPECT_EQ(client.exchange(std::string("\0\xff", 2)), NOT_UNDERSTOOD);
    EXPECT_EQ(client.exchange("[}"), NOT_UNDERSTOOD);
    EXPECT_EQ(client.exchange(LIST), LISTED);
}

TEST(Server, TakesANewConnectionWhenThePeerLeft) {
    RunningSimulator simulator;
    {
        LoopbackClient client(simulator.port());
        client.send("[{\"msg_id\":");
    }
    EXPECT_EQ(LoopbackClient(simulator.port()).exchange(LIST), LISTED);
    simulator.stop();
    EXPECT_EQ(simulator.log(), "rtos-sim: the connection ended inside a request: End of file\n");
}

TEST(Server, RefusesARequestThatIsTooLongAndGoesOn) {
    RunningSimulator simulator;
    LoopbackClient client(simulator.port());
    EXPECT_EQ(client.exchange("[\"" + std::string(RequestSplitter::MAX_REQUEST_BYTES, 'x') + "\"]"),
              NOT_UNDERSTOOD);
    EXPECT_EQ(client.exchange(LIST), LISTED);
}

TEST(Server, TakesARequestAsLongAsTheyGet) {
    const RunningSimulator simulator;
    LoopbackClient client(simulator.port());
    EXPECT_EQ(client.exchange(R"([{"msg_id":77,"param":99,"x":")" +
                              std::string(std::size_t{12} << 20U, 'x') + R"("}])"),
              NOT_FOUND);
}

TEST(Server, DelaysAnAnswer) {
    const RunningSimulator simulator({{FaultKind::DELAY, 150, 1}});
    LoopbackClient client(simulator.port());
    const auto start = steady_clock::now();
    EXPECT_EQ(client.exchange(LIST), LISTED);
    EXPECT_GE(steady_clock::now() - start, milliseconds(150));
}

TEST(Server, KeepsSilent) {
    const RunningSimulator simulator({{FaultKind::SILENT, 0, 1}});
    LoopbackClient client(simulator.port());
    client.send(ACTIVATE_99);
    EXPECT_EQ(client.exchange(LIST), LISTED);
}

TEST(Server, ClosesTheConnectionInsteadOfAnAnswer) {
    const RunningSimulator simulator({{FaultKind::CLOSE, 0, 1}});
    EXPECT_EQ(LoopbackClient(simulator.port()).exchange(LIST), "");
    EXPECT_EQ(LoopbackClient(simulator.port()).exchange(LIST), LISTED);
}

TEST(Server, ResetsTheConnectionInsteadOfAnAnswer) {
    const RunningSimulator simulator({{FaultKind::RESET, 0, 1}});
    LoopbackClient client(simulator.port());
    try {
        (void)client.exchange(LIST);
        FAIL() << "no reset";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::connection_reset);
    }
    EXPECT_EQ(LoopbackClient(simulator.port()).exchange(LIST), LISTED);
}

TEST(Server, SplitsAnAnswer) {
    const RunningSimulator simulator({{FaultKind::SPLIT, 3000, 1}});
    LoopbackClient client(simulator.port());
    EXPECT_EQ(client.exchange(LIST), R"([{"param":"reticle_li)");
    EXPECT_EQ(client.receive(), R"(st.json","ret_val":0}])");
    EXPECT_EQ(client.exchange(LIST), LISTED);
}

TEST(Server, SendsALongAnswerThatTheServiceCuts) {
    const RunningSimulator simulator({{FaultKind::LONG, 0, 1}});
    LoopbackClient client(simulator.port());
    const std::string first = client.exchange(LIST);
    EXPECT_EQ(first.size(), 1024U);
    EXPECT_EQ(client.receive(), std::string(511, ' ') + "]");
}

TEST(Server, EndsConnectionsAndTakesNewOnesAtARestart) {
    RunningSimulator simulator({{FaultKind::DELAY, 60'000, 2}});
    LoopbackClient idle(simulator.port());
    EXPECT_EQ(idle.exchange(LIST), LISTED);
    LoopbackClient busy(simulator.port());
    const std::string before = simulator.listFile();
    busy.send(std::string(ACTIVATE_3) + LIST);
    ASSERT_TRUE(eventually([&] { return simulator.listFile() != before; }));
    simulator.restart(milliseconds(0), true);
    EXPECT_EQ(idle.receive(), "");
    EXPECT_EQ(LoopbackClient(simulator.port()).exchange(ACTIVATE_99), NOT_FOUND);
    EXPECT_EQ(busy.receive(), "");
}

TEST(Server, TakesNoConnectionWhileItIsDown) {
    RunningSimulator simulator;
    simulator.restart(std::chrono::hours(1), false);
    EXPECT_THROW(LoopbackClient(simulator.port()), std::system_error);
    simulator.restart(milliseconds(50), true);
    EXPECT_EQ(LoopbackClient(simulator.port()).exchange(LIST), LISTED);
}

TEST(Server, ComesBackWhenItsPortIsFreeAgain) {
    RunningSimulator simulator;
    simulator.restart(std::chrono::hours(1), false);
    asio::io_context io;
    std::ostringstream log;
    std::optional<Server> other(std::in_place, io, simulator.port(), log);
    simulator.restart(milliseconds(0), false);
    other.reset();
    ASSERT_TRUE(eventually([&simulator] {
        try {
            return LoopbackClient(simulator.port()).exchange(LIST) == LISTED;
        } catch (const std::system_error&) {
            return false;
        }
    }));
    simulator.stop();
    EXPECT_EQ(simulator.log(), "rtos-sim: cannot listen on 127.0.0.1:" +
                                   std::to_string(simulator.port()) + ": Address already in use\n");
}

TEST(Server, ThrowsWhenThePortIsTaken) {
    const RunningSimulator simulator;
    asio::io_context io;
    std::ostringstream log;
    try {
        const Server second(io, simulator.port(), log);
        FAIL() << "two servers on one port";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), EADDRINUSE);
    }
}

}  // namespace
}  // namespace sim
