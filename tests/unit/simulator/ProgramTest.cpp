// rtos-sim as its users start and stop it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <random>
#include <regex>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "simulator/device/ReticleList.h"
#include "tests/support/Connection.h"
#include "tests/support/Patience.h"
#include "tests/support/Sockets.h"
#include "tests/system/ControlSocket.h"
#include "tests/system/Process.h"
#include "tests/system/Programs.h"
#include "tests/unit/simulator/LoopbackClient.h"
#include "tests/unit/simulator/TemporaryRoot.h"

namespace sim {
namespace {

using test::LoopbackClient;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* LIST = R"([{"msg_id":76,"param_get":""}])";
constexpr const char* LISTED = R"([{"param":"reticle_list.json","ret_val":0}])";
constexpr const char* DONE = R"([{"ret_val":0}])";
constexpr const char* ADD =
    R"([{"msg_id":78,"param2_name":"Mine","param3_data":"a:/new_reticle_data0"}])";
constexpr const char* DELETE_8 = R"([{"msg_id":80,"param":8}])";

constexpr std::size_t DATA_BYTES = 100'000;
constexpr int KILLED = 128 + SIGKILL;

/// Waits for the line that says where `program` listens.
std::string firstLine(Process& program) {
    static_cast<void>(eventually([&program] {
        return program.standardOutput().ends_with('\n') || !program.child().isAlive();
    }));
    return program.standardOutput();
}

/// The port in that line, which begins with `head`.
std::uint16_t portOf(Process& program,
                     const std::string& head = "rtos-sim: listening on 127.0.0.1:") {
    const std::string line = firstLine(program);
    if (!line.starts_with(head)) {
        throw std::runtime_error("it does not listen: " + line + program.standardError());
    }
    return static_cast<std::uint16_t>(std::stoul(line.substr(head.size())));
}

class ProgramTest : public testing::Test {
protected:
    /// Starts on the test's root.
    [[nodiscard]] std::vector<std::string> command(const std::vector<std::string>& more = {},
                                                   const std::string& port = "0") const {
        std::vector<std::string> words{programs::RTOS_SIM, "--port", port, "--root",
                                       _root.path().string()};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }

    test::TemporaryRoot _root;
};

TEST_F(ProgramTest, SaysWhereItListensAndAnswersThere) {
    Process program(command());
    const std::uint16_t port = portOf(program);
    EXPECT_EQ(LoopbackClient(port).exchange(LIST), LISTED);
    program.child().kill(SIGTERM);
    EXPECT_EQ(program.waitForEnd(), 0);
    EXPECT_EQ(program.standardOutput(), "rtos-sim: listening on 127.0.0.1:" + std::to_string(port) +
                                            ", root " + _root.path().string() + "/, 8 reticles\n");
    EXPECT_EQ(program.standardError(), "");
}

TEST_F(ProgramTest, EndsWithStatus0OnCtrlC) {
    Process program(command());
    LoopbackClient connected(portOf(program));
    program.child().kill(SIGINT);
    EXPECT_EQ(program.waitForEnd(), 0);
}

/// Asks for a picture, which the device's thread gives, until the simulator is gone.
void lookUntilGone(std::uint16_t page) {
    constexpr std::size_t ALL = 100'000;
    try {
        while (true) {
            Connection browser(sockets::connectTo(page));
            browser.send("GET /picture/0 HTTP/1.1\r\nHost: localhost\r\n\r\n");
            static_cast<void>(browser.receive(ALL));
        }
    } catch (const std::system_error&) {
        // It has ended, as it is meant to.
    }
}

TEST_F(ProgramTest, EndsWithStatus0WhileBrowsersLook) {
    constexpr int BROWSERS = 6;
    Process program(command({"--web", "0"}));
    const std::uint16_t page = portOf(program, "rtos-sim: page http://127.0.0.1:");
    Connection stream(sockets::connectTo(page));
    stream.send("GET /events HTTP/1.1\r\nHost: localhost\r\n\r\n");
    EXPECT_FALSE(stream.receiveOnce(1).empty());
    std::vector<std::jthread> browsers;
    for (int browser = 0; browser < BROWSERS; ++browser) {
        browsers.emplace_back(lookUntilGone, page);
    }
    program.child().kill(SIGTERM);
    EXPECT_EQ(program.waitForEnd(), 0);
}

TEST_F(ProgramTest, SaysThatItsPortIsTakenAndTouchesNoState) {
    Process first(command());
    const std::uint16_t port = portOf(first);
    _root.write("reticle/user-7", "at work");
    Process second(command({"--reset"}, std::to_string(port)));
    EXPECT_EQ(second.waitForEnd(), 1);
    EXPECT_EQ(second.standardOutput(), "");
    EXPECT_EQ(second.standardError(), "rtos-sim: cannot listen on 127.0.0.1:" +
                                          std::to_string(port) + ": Address already in use\n");
    EXPECT_TRUE(_root.has("reticle/user-7"));
}

TEST_F(ProgramTest, SaysThatItCannotReadItsState) {
    _root.write("reticle_list.json", "[");
    Process damaged(command());
    EXPECT_EQ(damaged.waitForEnd(), 1);
    EXPECT_THAT(damaged.standardError(), StartsWith("rtos-sim: " + _root.path().string() +
                                                    "/reticle_list.json holds no reticle list: "));
    Process restored(command({"--reset"}));
    EXPECT_EQ(LoopbackClient(portOf(restored)).exchange(LIST), LISTED);
}

TEST_F(ProgramTest, PrintsEventsOnStandardErrorWhenVerbose) {
    Process program(command({"--verbose", "--fault", "refuse:6@1"}));
    EXPECT_EQ(LoopbackClient(portOf(program)).exchange(LIST), R"([{"ret_val":6}])");
    program.child().kill(SIGTERM);
    EXPECT_EQ(program.waitForEnd(), 0);
    const std::regex time("[0-9-]{10}T[0-9:]{8}[.][0-9]{3}Z");
    EXPECT_EQ(std::regex_replace(program.standardError(), time, "TIME"),
              "rtos-sim: TIME #1 exchange 1: received GET_RETICLES: "
              "[{\"msg_id\":76,\"param_get\":\"\"}]\n"
              "rtos-sim: TIME #2 faults armed: none\n"
              "rtos-sim: TIME #3 exchange 1: spoiled by refuse:6: [{\"ret_val\":6}]\n");
}

TEST_F(ProgramTest, KeepsItsStateOverARestartUntilReset) {
    _root.write("new_reticle_data0", "mine");
    {
        Process program(command());
        EXPECT_EQ(LoopbackClient(portOf(program)).exchange(ADD), DONE);
        program.child().kill(SIGTERM);
        EXPECT_EQ(program.waitForEnd(), 0);
    }
    Process restarted(command());
    EXPECT_THAT(firstLine(restarted), HasSubstr(", 9 reticles"));
    EXPECT_EQ(_root.read("reticle/user-0"), "mine");
    Process reset(command({"--reset"}));
    EXPECT_THAT(firstLine(reset), HasSubstr(", 8 reticles"));
    EXPECT_FALSE(_root.has("reticle/user-0"));
}

/// Adds and deletes reticle 8 until the simulator is gone.
void changeUntilGone(std::uint16_t port) {
    try {
        LoopbackClient client(port);
        (void)client.exchange(DELETE_8);  // left by the round before
        while (client.exchange(ADD) == DONE && client.exchange(DELETE_8) == DONE) {
        }
    } catch (const std::system_error&) {
        // Killed amid an exchange, as it is meant to be.
    }
}

/// Lets the device's user do all that changes files, until the simulator is gone.
void controlUntilGone(const std::string& socket) {
    const std::string add = "[\"add\",\"Mine\",\"" + std::string(DATA_BYTES, 'x') + "\"]";
    const std::vector<std::string> commands = {R"(["activate","0"])",
                                               R"(["delete","8"])",
                                               add,
                                               R"(["delete","8"])",
                                               add,
                                               R"(["activate","8"])",
                                               R"(["color","8","blue"])",
                                               R"(["rename","8","Ours"])",
                                               R"(["deletable","8","yes"])",
                                               R"(["reset"])"};
    try {
        for (std::size_t next = 0; !ControlSocket::ask(socket, commands[next]).empty();) {
            next = (next + 1) % commands.size();
        }
    } catch (const std::system_error&) {
        // Killed amid a command, as it is meant to be.
    }
}

/// A simulator that is killed at any moment of its work leaves a state that the next one takes up.
class KilledProgramTest : public ProgramTest {
protected:
    KilledProgramTest() { _root.write("new_reticle_data0", _data); }

    /// Starts simulators and kills each after `maxLifeUs` at most.
    /// \param changeUntilGone changes what the one holds that listens on this port
    void killOften(const std::function<void(std::uint16_t port)>& changeUntilGone, int rounds,
                   int maxLifeUs) {
        std::mt19937 random(76);  // NOLINT(cert-msc32-c,cert-msc51-cpp): a failure must come again.
        std::uniform_int_distribution<int> lifeUs(0, maxLifeUs);
        for (int round = 0; round < rounds && !HasFailure(); ++round) {
            Process program(command({"--control", _socket}));
            std::thread changer(changeUntilGone, portOf(program));
            std::this_thread::sleep_for(std::chrono::microseconds(lifeUs(random)));
            program.child().kill(SIGKILL);
            EXPECT_EQ(program.waitForEnd(), KILLED);
            changer.join();
            expectReadableState();
        }
        Process last(command());
        EXPECT_EQ(LoopbackClient(portOf(last)).exchange(LIST), LISTED);
        const ReticleList list = parseListText(_root.read("reticle_list.json"));
        EXPECT_EQ(_root.reticleFiles().size(), list.size());
    }

    void expectReadableState() const {
        ReticleList list = parseListText(_root.read("reticle_list.json"));
        for (const Reticle& reticle : list) {
            EXPECT_TRUE(_root.has("reticle/" + reticle.fileName));
        }
        if (const auto added = findReticle(list, 8); added != list.end()) {
            EXPECT_EQ(_root.read("reticle/" + added->fileName), _data);
        }
        EXPECT_TRUE(list.size() == 8 || list.size() == 9) << list.size();
    }

    const std::string _data = std::string(DATA_BYTES, 'x');
    const std::string _socket = (_root.path() / "control.sock").string();
};

TEST_F(KilledProgramTest, LeavesWhatTheServiceHadChanged) {
    killOften(changeUntilGone, 40, 5'000);
}

TEST_F(KilledProgramTest, LeavesWhatTheUserHadChanged) {
    killOften([this](std::uint16_t /*port*/) { controlUntilGone(_socket); }, 60, 15'000);
}

}  // namespace
}  // namespace sim
