#include <gmock/gmock-matchers.h>

#include <string>

#include "tests/system/PlayedDeviceTest.h"
#include "tests/system/Reticlectl.h"
#include "tests/system/TerminalProcess.h"

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

constexpr int USAGE = 2;

using PingTest = PlayedDeviceTest;

TEST_F(PingTest, ByItselfItAsksOnce) {
    const Reticlectl ping = Reticlectl::run({"ping"});
    EXPECT_EQ(ping.status, Reticlectl::DONE);
    EXPECT_EQ(ping.error, "");
    EXPECT_THAT(ping.output,
                MatchesRegex("PING 127\\.0\\.0\\.1:3451: list requests\n"
                             "[0-9]+ bytes from 127\\.0\\.0\\.1:3451: seq=1 "
                             "time=[0-9]+\\.[0-9][0-9][0-9] ms\n"
                             "\n"
                             "--- 127\\.0\\.0\\.1:3451 ping statistics ---\n"
                             "1 requests transmitted, 1 received, 0% loss, time [0-9]+ms\n"
                             "rtt min/avg/max/mdev = [0-9./]+ ms\n"));
}

TEST_F(PingTest, ItAsksAsOftenAsItIsTold) {
    const Reticlectl ping = Reticlectl::run({"ping", "--count", "3", "--interval", "0.01"});
    EXPECT_EQ(ping.status, Reticlectl::DONE);
    EXPECT_THAT(ping.output, HasSubstr(": seq=3 time="));
    EXPECT_THAT(ping.output, HasSubstr("3 requests transmitted, 3 received, 0% loss, "));
}

TEST_F(PingTest, JsonIsOneDocument) {
    const Reticlectl ping =
        Reticlectl::run({"--json", "ping", "--count", "2", "--interval", "0.01"});
    EXPECT_THAT(ping.output,
                MatchesRegex("\\{\"avgMs\":[0-9.]+,\"elapsedMs\":[0-9.]+,\"lossPercent\":0\\.0,"
                             "\"maxMs\":[0-9.]+,\"mdevMs\":[0-9.]+,\"minMs\":[0-9.]+,"
                             "\"peer\":\"127\\.0\\.0\\.1:3451\",\"received\":2,"
                             "\"roundTripsMs\":\\[[0-9.]+,[0-9.]+\\],\"transmitted\":2\\}\n"));
}

TEST_F(PingTest, NoServiceIsCannotConnect) {
    service.reset();
    const Reticlectl ping = Reticlectl::run({"ping", "--count", "2", "--interval", "0.01"});
    EXPECT_EQ(ping.status, Reticlectl::CANNOT_CONNECT);
    EXPECT_THAT(ping.error, StartsWith("reticlectl: seq=1: cannot connect to 127.0.0.1:3451: "));
    EXPECT_THAT(ping.error, HasSubstr("\nreticlectl: seq=2: cannot connect "));
    EXPECT_THAT(ping.output, HasSubstr("2 requests transmitted, 0 received, 100% loss, "));
    EXPECT_THAT(ping.output, testing::Not(HasSubstr("rtt")));
}

TEST_F(PingTest, AServiceWithoutItsDeviceIsNoReply) {
    EXPECT_EQ(simulator->stop(), 0);
    const Reticlectl ping = Reticlectl::run({"--timeout", "1", "ping"});
    EXPECT_EQ(ping.status, Reticlectl::NO_REPLY);
    EXPECT_THAT(ping.error, HasSubstr("no reply from 127.0.0.1:3451 within 1 s"));
}

TEST_F(PingTest, OneAnswerIsEnough) {
    service.reset();
    TerminalProcess ping(reticlectl({"ping", "--count", "0", "--interval", "0.05"}));
    ASSERT_TRUE(ping.eventuallyShows("seq=1: cannot connect"));
    startService();
    ASSERT_TRUE(ping.eventuallyShows(" time="));
    ping.type("\x03");
    EXPECT_EQ(ping.waitForEnd(), Reticlectl::DONE);
    EXPECT_THAT(ping.output(), HasSubstr(" ping statistics ---"));
}

TEST_F(PingTest, ARefusalIsAnAnswer) {
    startDevice({"--fault", "refuse:8"});
    startService();
    EXPECT_EQ(Reticlectl::run({"ping"}).status, Reticlectl::DONE);
}

TEST_F(PingTest, CtrlCPrintsTheStatistics) {
    TerminalProcess ping(reticlectl({"ping", "--count", "0", "--interval", "3600"}));
    ASSERT_TRUE(ping.eventuallyShows(": seq=1 "));
    ping.type("\x03");
    EXPECT_EQ(ping.waitForEnd(), Reticlectl::DONE);
    EXPECT_THAT(ping.output(), HasSubstr("1 requests transmitted, 1 received, 0% loss, "));
}

TEST_F(PingTest, CtrlCDoesNotWaitForTheAnswer) {
    startDevice({"--fault", "silent"});
    startService();
    TerminalProcess ping(reticlectl({"--timeout", "3600", "ping"}));
    ASSERT_TRUE(ping.eventuallyShows("list requests"));
    ping.type("\x03");
    EXPECT_EQ(ping.waitForEnd(), Reticlectl::NO_REPLY);
    EXPECT_THAT(ping.output(), HasSubstr("1 requests transmitted, 0 received, 100% loss, "));
}

TEST_F(PingTest, WrongNumbersAreUsageErrors) {
    EXPECT_EQ(Reticlectl::run({"ping", "--count", "-1"}).status, USAGE);
    EXPECT_EQ(Reticlectl::run({"ping", "--count", "true"}).status, USAGE);
    EXPECT_EQ(Reticlectl::run({"ping", "--interval", "0"}).status, USAGE);
}

}  // namespace
