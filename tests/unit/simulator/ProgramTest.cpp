// rtos-sim as its users start and stop it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <random>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "simulator/device/ReticleList.h"
#include "tests/unit/simulator/ChildProcess.h"
#include "tests/unit/simulator/LoopbackClient.h"
#include "tests/unit/simulator/TemporaryRoot.h"

namespace sim {
namespace {

using test::ChildProcess;
using test::LoopbackClient;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* LIST = R"([{"msg_id":76,"param_get":""}])";
constexpr const char* LISTED = R"([{"param":"reticle_list.json","ret_val":0}])";
constexpr const char* DONE = R"([{"ret_val":0}])";
constexpr const char* ADD =
    R"([{"msg_id":78,"param2_name":"Mine","param3_data":"a:/new_reticle_data0"}])";
constexpr const char* DELETE_8 = R"([{"msg_id":80,"param":8}])";

class ProgramTest : public testing::Test {
protected:
    /// Starts on the test's root with any free port.
    [[nodiscard]] std::vector<std::string> arguments(std::vector<std::string> more = {}) const {
        more.insert(more.end(), {"--port", "0", "--root", _root.path().string()});
        return more;
    }

    test::TemporaryRoot _root;
};

TEST_F(ProgramTest, saysWhereItListensAndAnswersThere) {
    ChildProcess program(arguments());
    const std::uint16_t port = program.readPort();
    EXPECT_EQ(LoopbackClient(port).exchange(LIST), LISTED);
    program.signal(SIGTERM);
    EXPECT_EQ(program.wait(), 0);
    EXPECT_EQ(program.out(), "rtos-sim: listening on 127.0.0.1:" + std::to_string(port) +
                                 ", root " + _root.path().string() + "/, 8 reticles\n");
    EXPECT_EQ(program.err(), "");
}

TEST_F(ProgramTest, endsWithStatus0OnCtrlC) {
    ChildProcess program(arguments());
    const LoopbackClient connected(program.readPort());
    program.signal(SIGINT);
    EXPECT_EQ(program.wait(), 0);
}

TEST_F(ProgramTest, saysThatItsPortIsTakenAndTouchesNoState) {
    ChildProcess first(arguments());
    const std::uint16_t port = first.readPort();
    _root.write("reticle/user-7", "at work");
    ChildProcess second(
        {"--port", std::to_string(port), "--root", _root.path().string(), "--reset"});
    EXPECT_EQ(second.wait(), 1);
    EXPECT_EQ(second.out(), "");
    EXPECT_EQ(second.err(), "rtos-sim: cannot listen on 127.0.0.1:" + std::to_string(port) +
                                ": Address already in use\n");
    EXPECT_TRUE(_root.has("reticle/user-7"));
}

TEST_F(ProgramTest, saysThatItCannotReadItsState) {
    _root.write("reticle_list.json", "[");
    ChildProcess damaged(arguments());
    EXPECT_EQ(damaged.wait(), 1);
    EXPECT_THAT(damaged.err(), StartsWith("rtos-sim: " + _root.path().string() +
                                          "/reticle_list.json holds no reticle list: "));
    ChildProcess restored(arguments({"--reset"}));
    EXPECT_EQ(LoopbackClient(restored.readPort()).exchange(LIST), LISTED);
}

TEST_F(ProgramTest, printsExchangesOnStandardErrorWhenVerbose) {
    ChildProcess program(arguments({"--verbose", "--fault", "refuse:6@1"}));
    EXPECT_EQ(LoopbackClient(program.readPort()).exchange(LIST), R"([{"ret_val":6}])");
    program.signal(SIGTERM);
    EXPECT_EQ(program.wait(), 0);
    EXPECT_EQ(program.err(),
              "rtos-sim: exchange 1: request [{\"msg_id\":76,\"param_get\":\"\"}]\n"
              "rtos-sim: exchange 1: answer [{\"ret_val\":6}]\n");
}

TEST_F(ProgramTest, keepsItsStateOverARestartUntilReset) {
    _root.write("new_reticle_data0", "mine");
    {
        ChildProcess program(arguments());
        EXPECT_EQ(LoopbackClient(program.readPort()).exchange(ADD), DONE);
        program.signal(SIGTERM);
        EXPECT_EQ(program.wait(), 0);
    }
    ChildProcess restarted(arguments());
    EXPECT_THAT(restarted.readLine(), HasSubstr(", 9 reticles"));
    EXPECT_EQ(_root.read("reticle/user-0"), "mine");
    ChildProcess reset(arguments({"--reset"}));
    EXPECT_THAT(reset.readLine(), HasSubstr(", 8 reticles"));
    EXPECT_FALSE(_root.has("reticle/user-0"));
}

/// Adds and deletes reticle 8 until the simulator is gone.
void changeUntilGone(std::uint16_t port) {
    try {
        const LoopbackClient client(port);
        (void)client.exchange(DELETE_8);  // left by the round before
        while (client.exchange(ADD) == DONE && client.exchange(DELETE_8) == DONE) {
        }
    } catch (const std::system_error&) {
        // Killed amid an exchange, as it is meant to be.
    }
}

TEST_F(ProgramTest, leavesAReadableStateWhereverItIsKilled) {
    constexpr int ROUNDS = 40;
    constexpr int MAX_LIFE_US = 5'000;
    const std::string data(100'000, 'x');
    _root.write("new_reticle_data0", data);
    std::mt19937 random(76);  // NOLINT(cert-msc32-c,cert-msc51-cpp): a failure must come again.
    std::uniform_int_distribution<int> lifeUs(0, MAX_LIFE_US);
    for (int round = 0; round < ROUNDS; ++round) {
        ChildProcess program(arguments());
        std::thread changer(changeUntilGone, program.readPort());
        std::this_thread::sleep_for(std::chrono::microseconds(lifeUs(random)));
        program.signal(SIGKILL);
        EXPECT_EQ(program.wait(), -SIGKILL);
        changer.join();

        ReticleList list = parseListText(_root.read("reticle_list.json"));
        for (const Reticle& reticle : list) {
            ASSERT_TRUE(_root.has("reticle/" + reticle.fileName)) << round;
        }
        if (const auto added = findReticle(list, 8); added != list.end()) {
            ASSERT_EQ(_root.read("reticle/" + added->fileName), data) << round;
        }
        ASSERT_TRUE(list.size() == 8 || list.size() == 9) << round;
    }
    ChildProcess last(arguments());
    EXPECT_EQ(LoopbackClient(last.readPort()).exchange(LIST), LISTED);
    const ReticleList list = parseListText(_root.read("reticle_list.json"));
    EXPECT_EQ(_root.reticleFiles().size(), list.size());
}

}  // namespace
}  // namespace sim
