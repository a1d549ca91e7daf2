// A simulator that is played with while the service and its clients are at work.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "simulator/base/JsonText.h"
#include "tests/support/Connection.h"
#include "tests/support/Patience.h"
#include "tests/support/Sockets.h"
#include "tests/support/Text.h"
#include "tests/system/ControlSocket.h"
#include "tests/system/PlayedDeviceTest.h"
#include "tests/system/Process.h"
#include "tests/system/ProcessInfo.h"
#include "tests/system/Programs.h"
#include "tests/system/Reticlectl.h"

namespace {

namespace fs = std::filesystem;

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using Words = std::vector<std::string>;

constexpr const char* SOCKET = "/tmp/control.sock";
constexpr int DONE = 0;
constexpr int FAILED = 1;

/// `rtos-sim ctl SOCKET words...`
std::vector<std::string> ctlCommand(const Words& words) {
    std::vector<std::string> command{programs::RTOS_SIM, "ctl", SOCKET};
    command.insert(command.end(), words.begin(), words.end());
    return command;
}

struct Ctl {
    int status;
    std::string output;
    std::string error;

    static Ctl run(const Words& words) {
        Process process(ctlCommand(words));
        const int status = process.waitForEnd().value();
        return {status, process.standardOutput(), process.standardError()};
    }
};

void expectDone(const Words& words) {
    const Ctl call = Ctl::run(words);
    EXPECT_EQ(call.status, DONE) << words.front();
    EXPECT_EQ(call.error, "");
}

void expectRefusal(const Words& words, const std::string& error) {
    const Ctl call = Ctl::run(words);
    EXPECT_EQ(call.status, FAILED) << words.front();
    EXPECT_EQ(call.output, "");
    EXPECT_EQ(call.error, "rtos-sim: " + error + "\n");
}

/// The reticles as a client of the service sees them.
std::string list() {
    return Reticlectl::run({"list"}).table();
}

/// The line of reticle `index` in `list`.
std::string row(int index) {
    const std::string table = list();
    const std::size_t start = table.find("\n    " + std::to_string(index) + " ");
    return start == std::string::npos
               ? ""
               : table.substr(start + 1, table.find('\n', start + 1) - start - 1);
}

class SimulatorControlTest : public PlayedDeviceTest {
protected:
    SimulatorControlTest() {
        // Whatever the simulator leaves to it, anybody may do.
        const mode_t previous = umask(0);
        startDevice({"--control", SOCKET});
        umask(previous);
    }
    ~SimulatorControlTest() override {
        simulator.reset();
        fs::remove(SOCKET);
    }
    SimulatorControlTest(const SimulatorControlTest&) = delete;
    SimulatorControlTest& operator=(const SimulatorControlTest&) = delete;

    /// Starts one that must fail, on another port. \return its standard error
    static std::string errorAtStart() {
        Process process(
            {programs::RTOS_SIM, "--port", "0", "--root", "/tmp/FL0/other", "--control", SOCKET});
        EXPECT_EQ(process.waitForEnd(), FAILED);
        EXPECT_EQ(process.standardOutput(), "");
        return process.standardError();
    }
};

TEST_F(SimulatorControlTest, OnlyItsUserMayUseTheSocket) {
    EXPECT_EQ(fs::status(SOCKET).type(), fs::file_type::socket);
    EXPECT_EQ(fs::status(SOCKET).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(SimulatorControlTest, TheSocketGoesWithTheSimulator) {
    EXPECT_EQ(simulator->stop(), DONE);
    EXPECT_FALSE(fs::exists(SOCKET));
    expectRefusal({"status"},
                  "no simulator takes commands at /tmp/control.sock: No such file or "
                  "directory");
}

TEST_F(SimulatorControlTest, TheSocketOfAKilledSimulatorIsReplaced) {
    simulator->kill();
    ASSERT_TRUE(fs::exists(SOCKET));
    expectRefusal({"status"},
                  "no simulator takes commands at /tmp/control.sock: Connection refused");
    startDevice({"--control", SOCKET});
    expectDone({"status"});
}

TEST_F(SimulatorControlTest, TheSocketOfALivingSimulatorIsLeftAlone) {
    EXPECT_EQ(errorAtStart(), "rtos-sim: cannot listen at /tmp/control.sock: it is in use\n");
    EXPECT_FALSE(fs::exists("/tmp/FL0/other"));
    expectDone({"status"});
}

TEST_F(SimulatorControlTest, WhatIsNoSocketIsLeftAlone) {
    simulator.reset();
    flash.write("precious", "mine");
    fs::create_symlink("/tmp/FL0/precious", SOCKET);
    EXPECT_EQ(errorAtStart(),
              "rtos-sim: cannot listen at /tmp/control.sock: it is there already, and no socket\n");
    EXPECT_EQ(contentOfFile(SOCKET), "mine");
}

TEST_F(SimulatorControlTest, ASocketThatTookItsPlaceStays) {
    fs::rename(SOCKET, "/tmp/moved.sock");
    Simulator other({"--port", "0", "--root", "/tmp/FL0/other", "--control", SOCKET});
    EXPECT_EQ(simulator->stop(), DONE);
    expectDone({"status"});
    fs::remove("/tmp/moved.sock");
}

TEST_F(SimulatorControlTest, ClientsSeeWhatTheUserChanges) {
    expectDone({"activate", "3"});
    EXPECT_EQ(row(3), "    3  *       BDC 7.62 mm   no         #ffb000");
    expectDone({"color", "3", "#123456"});
    expectDone({"rename", "3", "Ladder"});
    expectDone({"deletable", "3", "yes"});
    EXPECT_EQ(row(3), "    3  *       Ladder        yes        #123456");
    expectDone({"activate", "0"});
    expectDone({"delete", "3"});
    EXPECT_EQ(row(3), "");
}

TEST_F(SimulatorControlTest, ClientsSeeAReticleThatTheUserAdds) {
    flash.write("home/ring.svg", "<svg stroke=\"user_color\"/>");
    expectDone({"add", "Ring", "/tmp/FL0/home/ring.svg"});
    EXPECT_EQ(row(8), "    8          Ring          yes        red");
    EXPECT_EQ(Reticlectl::run({"show", "8"}).output, "<svg stroke=\"red\"/>");
    expectDone({"reset"});
    EXPECT_EQ(row(8), "");
}

TEST_F(SimulatorControlTest, ClientsMeetTheFaultsThatAreArmed) {
    expectDone({"fault", "refuse:6"});
    EXPECT_EQ(Reticlectl::run({"activate", "1"}).status, Reticlectl::REFUSED);
    EXPECT_EQ(Reticlectl::run({"activate", "1"}).status, Reticlectl::DONE);
    expectDone({"fault", "bad-list", "every"});
    EXPECT_THAT(list(), StartsWith("no reticles"));
    expectDone({"faults", "off"});
    EXPECT_EQ(row(1), "    1  *       Mil-Dot       no         red");
}

TEST_F(SimulatorControlTest, ARestartLosesTheLinkOfTheService) {
    EXPECT_NE(list(), "");
    EXPECT_EQ(Ctl::run({"restart", "--down", "3600"}).output, "{\n    \"isUp\" : false\n}\n");
    EXPECT_EQ(Reticlectl::run({"--timeout", "0.3", "list"}).status, Reticlectl::NO_REPLY);
    startService();
    EXPECT_EQ(Reticlectl::run({"--timeout", "0.3", "list"}).status, Reticlectl::NO_REPLY);
    EXPECT_EQ(Ctl::run({"restart"}).output, "{\n    \"isUp\" : true\n}\n");
    startService();
    EXPECT_NE(row(0), "");
}

TEST_F(SimulatorControlTest, StatusTellsOfTheServicesExchanges) {
    EXPECT_NE(list(), "");
    const Json::Value status = sim::parseJson(Ctl::run({"status"}).output);
    EXPECT_EQ(status["exchanges"].asInt(), 1);
    EXPECT_EQ(status["root"].asString(), "/tmp/FL0/");
    EXPECT_EQ(status["reticles"].size(), 8U);
}

TEST_F(SimulatorControlTest, RefusedCommandsSayWhyAndChangeNothing) {
    const std::string before = flash.read("reticle_list.json");
    expectRefusal({"activate", "9"}, "no reticle has index 9");
    expectRefusal({"delete", "1"}, "reticle 1 is not deletable");
    expectRefusal({"fault", "loud"}, "no fault is called 'loud'");
    expectRefusal({"add", "Ring", "/tmp/none"}, "cannot read /tmp/none");
    for (const char* text : {"", "hello", "{}", "[1]", "[[]]", "[]", "[\"status\",\"now\"]"}) {
        EXPECT_THAT(ControlSocket::ask(SOCKET, text), HasSubstr("{\"error\":")) << text;
    }
    flash.write("home/huge.svg", std::string(std::size_t{17} << 20U, 'x'));
    expectRefusal({"add", "Huge", "/tmp/FL0/home/huge.svg"}, "the command is longer than 16 MiB");
    EXPECT_EQ(flash.read("reticle_list.json"), before);
}

TEST_F(SimulatorControlTest, TwoFollowersSeeTheSameEvents) {
    ControlSocket first(SOCKET);
    first.send("[\"events\"]");
    // Its answer comes after the follower's command, which arrived before.
    expectDone({"activate", "1"});
    EXPECT_THAT(first.receiveLine(), HasSubstr("\"kind\":\"written\""));
    EXPECT_THAT(first.receiveLine(), HasSubstr("\"kind\":\"changed\""));

    Process second(ctlCommand({"events"}));
    std::string seen;
    const bool follows = eventually([&] {
        expectDone({"color", "0", "blue" + std::to_string(seen.size())});
        seen += first.receiveLine() + '\n' + first.receiveLine() + '\n';
        return !second.standardOutput().empty();
    });
    ASSERT_TRUE(follows);
    EXPECT_NE(list(), "");
    EXPECT_THAT(first.receiveLine(), HasSubstr("\"message\":\"GET_RETICLES\""));
    const std::string answered = first.receiveLine();
    EXPECT_THAT(answered, HasSubstr("\"kind\":\"answered\""));
    EXPECT_TRUE(
        eventually([&] { return second.standardOutput().find(answered) != std::string::npos; }));
    EXPECT_THAT(second.standardOutput(), EndsWith(answered + '\n'));

    EXPECT_EQ(simulator->stop(), DONE);
    EXPECT_EQ(second.waitForEnd(), DONE);
    EXPECT_EQ(first.receiveLine(), "");
}

/// Changes the list `times` times, each of which makes an event of 16 KB.
void makeEvents(int times) {
    for (int change = 0; change < times; ++change) {
        EXPECT_THAT(
            ControlSocket::ask(SOCKET, "[\"activate\",\"" + std::to_string(change % 2) + "\"]"),
            HasSubstr("\"active\":true"));
    }
}

TEST_F(SimulatorControlTest, AFollowerThatDoesNotReadCostsNobodyAnything) {
    constexpr std::size_t ALLOWED_GROWTH_BYTES = std::size_t{6} << 20U;
    for (int index = 0; index < 8; ++index) {
        expectDone({"rename", std::to_string(index), std::string(2000, 'x')});
    }
    makeEvents(100);
    const ProcessInfo info(simulator->pid());
    const std::size_t before = info.residentBytes();

    ControlSocket follower(SOCKET);
    follower.send("[\"events\"]");
    makeEvents(programs::HAVE_OVERHEAD ? 200 : 2000);  // 32 MB
    if (!programs::HAVE_OVERHEAD) {
        EXPECT_LT(info.residentBytes(), before + ALLOWED_GROWTH_BYTES);
    }
    EXPECT_NE(list(), "");

    // It gets the oldest, then, as soon as it has read, what happens from there on.
    int number = 0;
    for (int lines = 1;; ++lines) {
        const int next = sim::parseJson(follower.receiveLine())["event"].asInt();
        if (number != 0 && next != number + 1) {
            break;
        }
        number = next;
        if (lines % 20 == 0) {
            makeEvents(1);
        }
    }
}

class SimulatorReplayControlTest : public SystemTest {
protected:
    SimulatorReplayControlTest() {
        flash.write("one.session",
                    "rtos-sim session 1\nrtos receives\n    [1]\nfile list.json\n"
                    "    []\nrtos answers\n    [{\"ret_val\":0}]\n");
        simulator.emplace(Words{"--replay", "/tmp/FL0/one.session", "--control", SOCKET});
    }

    std::optional<Simulator> simulator;
};

TEST_F(SimulatorReplayControlTest, GivesStatusAndEventsAndTakesNoChanges) {
    ControlSocket follower(SOCKET);
    follower.send("[\"events\"]");
    expectRefusal({"activate", "1"},
                  "activate makes no sense here: the device only plays a session");
    EXPECT_EQ(sim::compactJson(sim::parseJson(Ctl::run({"status"}).output)),
              R"({"exchanges":0,"isUp":true,"root":"/tmp/FL0/","session":1})");
    Connection service(sockets::connectTo(3425));
    service.send("[1]");
    EXPECT_EQ(service.receive(15), "[{\"ret_val\":0}]");
    for (const char* kind : {"received", "written", "answered"}) {
        EXPECT_EQ(sim::parseJson(follower.receiveLine())["kind"].asString(), kind);
    }
}

}  // namespace
