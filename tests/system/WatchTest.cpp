#include <csignal>
#include <string>

#include "tests/support/Text.h"
#include "tests/system/PlayedDeviceTest.h"
#include "tests/system/Process.h"
#include "tests/system/Reticlectl.h"
#include "tests/system/TerminalProcess.h"

namespace {

constexpr const char* TO_TOP_LEFT = "\x1B[H";
constexpr const char* CLEAR_BELOW = "\x1B[J";
constexpr int ENDED_BY_CTRL_C = 128 + SIGINT;

/// The picture that stands on the terminal: the last that is complete.
std::string lastPicture(TerminalProcess& process) {
    const std::string& output = process.output();
    const std::size_t end = output.rfind(CLEAR_BELOW);
    if (end == std::string::npos) {
        return "";
    }
    return output.substr(output.rfind(TO_TOP_LEFT, end), end - output.rfind(TO_TOP_LEFT, end));
}

bool eventuallyPictures(TerminalProcess& process, const std::string& text) {
    return eventually([&] { return lastPicture(process).find(text) != std::string::npos; });
}

class WatchTest : public PlayedDeviceTest {
protected:
    static std::vector<std::string> watch(const std::vector<std::string>& options = {}) {
        std::vector<std::string> command =
            reticlectl({"--timeout", "60", "--color", "never", "list", "--watch", "0.05"});
        command.insert(command.end(), options.begin(), options.end());
        return command;
    }
};

TEST_F(WatchTest, ThePictureFollowsTheDeviceUntilCtrlC) {
    TerminalProcess process(watch());
    EXPECT_TRUE(eventuallyPictures(process, "    0  *       Duplex"));
    EXPECT_EQ(Reticlectl::run({"activate", "3"}).status, Reticlectl::DONE);
    EXPECT_TRUE(eventuallyPictures(process, "    3  *       BDC 7.62 mm"));
    process.type("\x03");
    EXPECT_EQ(process.waitForEnd(), ENDED_BY_CTRL_C);
}

TEST_F(WatchTest, ALowWindowDoesNotScroll) {
    TerminalProcess process(watch(), {80, 6});
    ASSERT_TRUE(eventuallyPictures(process, "Mil-Dot"));
    const std::string picture = lastPicture(process);
    EXPECT_EQ(countOf("\r\n", picture), 5U) << picture;
    EXPECT_NE(picture.find("... 6 more"), std::string::npos) << picture;
}

TEST_F(WatchTest, WhatHasChangedIsMarked) {
    TerminalProcess process(watch());
    ASSERT_TRUE(eventuallyPictures(process, "      0  *       Duplex"));
    EXPECT_EQ(Reticlectl::run({"activate", "3"}).status, Reticlectl::DONE);
    EXPECT_TRUE(process.eventuallyShows("\r\n~     3  *       BDC 7.62 mm"));
    EXPECT_NE(process.output().find("\r\n~     0          Duplex"), std::string::npos);
    EXPECT_NE(process.output().find("\r\n~ changed\x1B[K\r\n"), std::string::npos);
    EXPECT_EQ(process.output().find("\r\n~     1 "), std::string::npos);
}

TEST_F(WatchTest, TheHeaderIsThereBeforeTheFirstList) {
    startDevice({"--fault", "silent"});
    TerminalProcess process(watch());
    EXPECT_TRUE(eventuallyPictures(process, "Every 0.05 s: 127.0.0.1:3451, "));
    EXPECT_TRUE(eventuallyPictures(process, "Waiting for the list: 1 of 60 s"));
}

TEST_F(WatchTest, AnErrorIsWrappedAndNotCut) {
    service.reset();
    TerminalProcess process(watch(), {40, 20});
    EXPECT_TRUE(eventuallyPictures(process, "check that"));
    EXPECT_TRUE(eventuallyPictures(process, "the host and port"));
}

TEST_F(WatchTest, ALostServiceIsSaidAndAskedAgain) {
    TerminalProcess process(watch());
    ASSERT_TRUE(eventuallyPictures(process, "Duplex"));
    service.reset();
    EXPECT_TRUE(eventuallyPictures(process, "No list: cannot connect"));
    // What was known stays in sight.
    EXPECT_NE(lastPicture(process).find("Duplex"), std::string::npos);
    startService();
    EXPECT_TRUE(
        eventually([&] { return lastPicture(process).find("No list: ") == std::string::npos; }));
}

TEST_F(WatchTest, AServiceThatIsNotThereYetIsWaitedFor) {
    service.reset();
    TerminalProcess process(watch());
    ASSERT_TRUE(eventuallyPictures(process, "No list: cannot connect"));
    startService();
    EXPECT_TRUE(eventuallyPictures(process, "Duplex"));
}

TEST_F(WatchTest, APipeGetsOneListBelowTheOther) {
    Process process(watch());
    EXPECT_TRUE(eventually([&] { return countOf("\n\nINDEX", process.standardOutput()) >= 2; }));
    EXPECT_EQ(process.standardOutput().find('\x1B'), std::string::npos);
    service.reset();
    EXPECT_TRUE(eventually(
        [&] { return countOf("reticlectl: cannot connect", process.standardError()) >= 2; }));
    process.child().kill(SIGINT);
    EXPECT_EQ(process.waitForEnd(), ENDED_BY_CTRL_C);
}

TEST_F(WatchTest, JsonIsADocumentForEachList) {
    Process process(watch({"--json"}));
    EXPECT_TRUE(
        eventually([&] { return countOf(R"("result" : "OK")", process.standardOutput()) >= 2; }));
    EXPECT_EQ(process.standardOutput().find("INDEX"), std::string::npos);
}

}  // namespace
