#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <optional>
#include <vector>

#include "tests/support/Patience.h"
#include "tests/support/Ports.h"
#include "tests/support/Sockets.h"
#include "tests/support/Text.h"
#include "tests/system/Daemon.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundService.h"
#include "tests/system/Process.h"
#include "tests/system/ProcessInfo.h"
#include "tests/system/Programs.h"
#include "tests/system/SystemTest.h"

namespace {

using StartUpTest = SystemTest;

using Descriptors = std::map<int, std::string>;

// Numbers of sockets are not ours to foretell.
Descriptors withoutSocketNumbers(Descriptors descriptors) {
    for (auto& [number, target] : descriptors) {
        if (target.starts_with("socket:")) {
            target = "socket";
        }
    }
    return descriptors;
}

TEST_F(StartUpTest, CommandReturnsWithStatus0AndTheDaemonStays) {
    Daemon service;
    service.waitUntilListening();
    EXPECT_EQ(service.command().waitForEnd(), 0);
    EXPECT_EQ(service.command().standardOutput(), "1st fork sucess\n2nd fork sucess\n");
    EXPECT_EQ(service.command().standardError(), "");
    EXPECT_TRUE(service.isAlive());
}

TEST_F(StartUpTest, DaemonIsDetachedFromTheTerminal) {
    Daemon service;
    service.waitUntilListening();
    EXPECT_EQ(service.info().terminal(), 0);
    EXPECT_NE(getsid(service.pid()), getsid(0));
    // No session leader: it can never get a terminal again.
    EXPECT_NE(getsid(service.pid()), service.pid());
    // Its starter may end later than it listens.
    EXPECT_TRUE(eventually(
        [&service] { return service.info().status("PPid") == std::to_string(getpid()); }));
}

// Or the first socket would be standard output, and the log would go to the RTOS.
TEST_F(StartUpTest, ForegroundServiceStartedWithoutStandardStreamsKeepsTheirNumbersFree) {
    const Process service(
        {"sh", "-c", std::string("exec ") + programs::RETICLED_FOREGROUND + " <&- >&- 2>&-"});
    ASSERT_TRUE(eventually([] { return isListening(CLIENT_PORT); }));
    EXPECT_EQ(
        withoutSocketNumbers(ProcessInfo(service.pid()).descriptors()),
        (Descriptors{
            {0, "/dev/null"}, {1, "/dev/null"}, {2, "/dev/null"}, {3, "socket"}, {4, "socket"}}));
}

/// What starts `program`, its standard streams closed, where /dev is empty.
std::vector<std::string> withoutNull(const std::string& program) {
    return {
        "unshare", "--mount", "sh", "-c", R"(mount -t tmpfs none /dev && exec "$0" <&- >&- 2>&-)",
        program};
}

TEST_F(StartUpTest, ForegroundServiceWithoutStandardStreamsAndNullServesItsClients) {
    ScriptedRtos rtos;
    ForegroundService service(withoutNull(programs::RETICLED_FOREGROUND));
    service.waitUntilListening();
    FrameClient client;
    exchanges::expectServed(client, rtos);
    exchanges::expectServed(client, rtos);
    Descriptors streams = service.info().descriptors();
    streams.erase(streams.find(STDERR_FILENO + 1), streams.end());
    EXPECT_EQ(streams, (Descriptors{{0, "/"}, {1, "/"}, {2, "/"}}));
}

TEST_F(StartUpTest, DaemonWithoutNullServesItsClients) {
    ScriptedRtos rtos;
    Daemon service({"unshare", "--mount", "sh", "-c", R"(mount -t tmpfs none /dev && exec "$0")",
                    programs::RETICLED});
    service.waitUntilListening();
    FrameClient client;
    exchanges::expectServed(client, rtos);
    exchanges::expectServed(client, rtos);
}

// Its first line is written before it has left the streams of its starter.
TEST_F(StartUpTest, DaemonWhoseStarterNoLongerReadsItsOutputEndsBySigpipe) {
    Process command({"sh", "-c",
                     R"(mkfifo /tmp/out; exec 3<>/tmp/out 4>/tmp/out 3<&-; exec "$0" >&4)",
                     programs::RETICLED});
    EXPECT_EQ(command.waitForEnd(), 0);
    int status = 0;
    ASSERT_GT(waitpid(-1, &status, 0), 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGPIPE) << status;
}

TEST_F(StartUpTest, ClosedStandardInputIsReportedAndReplaced) {
    Daemon service({"sh", "-c", R"(exec "$0" <&-)", programs::RETICLED});
    service.waitUntilListening();
    EXPECT_EQ(service.command().standardError(), "Bad file descriptor: Bad file descriptor\n");
    EXPECT_EQ(service.info().descriptors().at(STDIN_FILENO), "/dev/null");
}

TEST_F(StartUpTest, DaemonKeepsWorkingDirectoryAndUmask) {
    std::filesystem::create_directories("/tmp/elsewhere");
    std::filesystem::current_path("/tmp/elsewhere");
    const mode_t before = umask(0137);
    Daemon service;
    umask(before);
    std::filesystem::current_path("/");
    service.waitUntilListening();
    EXPECT_EQ(service.info().workingDirectory(), "/tmp/elsewhere");
    EXPECT_EQ(service.info().status("Umask"), "0137");
}

TEST_F(StartUpTest, ArgumentsChangeNothing) {
    ScriptedRtos rtos;
    Daemon service({programs::RETICLED, "--help", "-x", "4000"});
    service.waitUntilListening();
    EXPECT_EQ(service.command().standardOutput(), "1st fork sucess\n2nd fork sucess\n");
    EXPECT_EQ(service.command().standardError(), "");
    FrameClient client;
    exchanges::expectServed(client, rtos);
}

TEST_F(StartUpTest, ForegroundServiceListensAndSaysNothing) {
    ForegroundService service;
    service.waitUntilListening();
    EXPECT_EQ(service.progress(), "");
    EXPECT_EQ(service.errors(), "");
}

TEST_F(StartUpTest, ForegroundServiceRefusesWrongArguments) {
    using Words = std::vector<std::string>;
    for (const Words& words :
         {Words{"--log-bytes"}, Words{"--log-bytes", ""}, Words{"--log-bytes", "-1"},
          Words{"--log-bytes", "12x"}, Words{"--log-bytes", "1", "2"}, Words{"--daemon"},
          Words{"512"}, Words{"--help", "--version"},
          Words{"--log-bytes", "99999999999999999999"}}) {
        Words command{programs::RETICLED_FOREGROUND};
        command.insert(command.end(), words.begin(), words.end());
        ForegroundService service(command);
        EXPECT_EQ(service.waitForEnd(), 2) << words.front();
        EXPECT_EQ(service.errors(), "Usage: reticled-foreground [--log-bytes N]\n");
        EXPECT_EQ(service.progress(), "");
    }
}

TEST_F(StartUpTest, DaemonEndsWithStatus0WhenThePortIsTaken) {
    const FileDescriptor taken = sockets::listenOn(CLIENT_PORT);
    Daemon service;
    EXPECT_EQ(service.command().waitForEnd(), 0);
    EXPECT_EQ(service.waitForEnd(), 0);
}

TEST_F(StartUpTest, ForegroundServiceSaysWhyItEndsWhenThePortIsTaken) {
    const FileDescriptor taken = sockets::listenOn(CLIENT_PORT);
    ForegroundService service;
    EXPECT_EQ(service.waitForEnd(), 0);
    EXPECT_EQ(service.progress(), "");
    EXPECT_EQ(service.errors(),
              "Address already in use: Address already in use\n"
              "Exception is caught in main \n");
}

// The port is shared by those who ask for it, and both do: a mistake that nothing reports.
TEST_F(StartUpTest, SecondServiceOfTheSameUserSharesThePort) {
    ScriptedRtos rtos;
    std::optional<ForegroundService> first;
    first.emplace();
    first->waitUntilListening();
    ForegroundService second;
    constexpr std::size_t WITH_BOTH_SOCKETS = 5;
    EXPECT_TRUE(
        eventually([&] { return second.info().descriptors().size() == WITH_BOTH_SOCKETS; }));
    EXPECT_TRUE(eventually([&] { return second.info().isAsleep(); }));
    EXPECT_TRUE(first->isAlive());
    first.reset();
    FrameClient client;
    exchanges::expectServed(client, rtos);
    EXPECT_EQ(second.errors(), "json value: 6\n");
}

TEST_F(StartUpTest, ClientsComeByAnyAddress) {
    ForegroundService service;
    service.waitUntilListening();
    // Another one of this machine.
    const FileDescriptor client = sockets::connectTo(CLIENT_PORT, 0, "127.0.0.2");
    constexpr std::size_t WITH_THE_CLIENT = 6;
    EXPECT_TRUE(eventually([&] { return service.info().descriptors().size() == WITH_THE_CLIENT; }));
}

// Ten, and the kernel adds one.
TEST_F(StartUpTest, ElevenClientsMayWaitToBeAccepted) {
    constexpr int CONNECTED_WITHIN_MS = 1000;
    ForegroundService service;
    service.waitUntilListening();
    kill(service.pid(), SIGSTOP);
    EXPECT_TRUE(eventually([&] { return service.info().isStopped(); }));
    std::vector<FileDescriptor> clients;
    pollfd last{};
    do {
        clients.push_back(sockets::startConnectingTo(CLIENT_PORT));
        last = {clients.back().get(), POLLOUT, 0};
    } while (poll(&last, 1, CONNECTED_WITHIN_MS) == 1);
    EXPECT_EQ(clients.size() - 1, 11);
}

TEST_F(StartUpTest, HighDescriptorLimitCostsNoTime) {
    // As high as this kernel and this user may go; closing a million descriptors one by one takes
    // more than a second.
    constexpr auto RAISE_AND_START =
        R"(ulimit -n 1048576 2>/dev/null || ulimit -n $(ulimit -H -n); exec "$0")";
    Daemon service({"sh", "-c", RAISE_AND_START, programs::RETICLED});
    service.waitUntilListening();
    EXPECT_LT(service.info().processorTime(), std::chrono::milliseconds(500));
}

}  // namespace
