#include <csignal>
#include <map>
#include <string>
#include <vector>

#include "tests/system/PlayedDeviceTest.h"
#include "tests/system/Reticlectl.h"
#include "tests/system/TerminalProcess.h"

namespace {

constexpr const char* AMBER_SWATCH = "\x1B[38;2;128;128;128;48;2;255;176;0m▏▕\x1B[0m #ffb000";
constexpr char ESCAPE = '\x1B';
constexpr std::size_t UPLOAD_BYTES = 300'000;
constexpr std::size_t SMALL_UPLOAD_BYTES = 200'000;

/// What reticlectl shows on a terminal, and to whom it has listened.
class TerminalTest : public PlayedDeviceTest {
protected:
    using Environment = std::map<std::string, std::string>;

    static std::string shown(const std::vector<std::string>& arguments,
                             TerminalProcess::Size size = TerminalProcess::WIDE,
                             const Environment& environment = {}) {
        TerminalProcess process(reticlectl(arguments), size, environment);
        EXPECT_EQ(process.waitForEnd(), 0);
        return process.output();
    }

    static bool hasColors(const std::vector<std::string>& arguments,
                          const Environment& environment = {}) {
        return shown(arguments, TerminalProcess::WIDE, environment).find(ESCAPE) !=
               std::string::npos;
    }

    void writeBig(std::size_t bytes) const {
        flash.write("home/big.svg", "\"user_color\"" + std::string(bytes, 'x'));
    }

    std::string upload(std::size_t bytes) {
        writeBig(bytes);
        return shown({"add", "Big", "/tmp/FL0/home/big.svg"});
    }
};

TEST_F(TerminalTest, ATerminalShowsColoursAndSwatches) {
    const std::string output = shown({"list"});
    EXPECT_NE(output.find("\x1B[1mINDEX\x1B[0m"), std::string::npos) << output;
    EXPECT_NE(output.find(AMBER_SWATCH), std::string::npos) << output;
}

TEST_F(TerminalTest, TheUserTurnsColoursOff) {
    EXPECT_TRUE(hasColors({"list"}, {{"NO_COLOR", ""}}));
    EXPECT_FALSE(hasColors({"list"}, {{"NO_COLOR", "1"}}));
    EXPECT_FALSE(hasColors({"list"}, {{"TERM", "dumb"}}));
    EXPECT_FALSE(hasColors({"list", "--color", "never"}));
    EXPECT_TRUE(hasColors({"list", "--color", "always"}, {{"NO_COLOR", "1"}}));
}

TEST_F(TerminalTest, APipeGetsPlainTextUnlessColoursAreAskedFor) {
    EXPECT_EQ(Reticlectl::run({"list"}).output.find(ESCAPE), std::string::npos);
    EXPECT_NE(Reticlectl::run({"--color", "always", "list"}).output.find(AMBER_SWATCH),
              std::string::npos);
}

TEST_F(TerminalTest, TheTableFitsTheWidth) {
    flash.write("home/ring.svg", R"(<svg stroke="user_color"/>)");
    // Eight characters of two columns each.
    ASSERT_EQ(Reticlectl::run({"add", "十字線十字線十字", "/tmp/FL0/home/ring.svg"}).status, 0);
    EXPECT_EQ(shown({"list", "--color", "never"}, {44, 50}),
              "INDEX  ACTIVE  NAME       DELETABLE  COLOUR \r\n"
              "    0  *       Duplex     no         black  \r\n"
              "    1          Mil-Dot    no         red    \r\n"
              "    2          MOA Grid   no         #00c853\r\n"
              "    3          BDC 7.62…  no         #ffb000\r\n"
              "    4          Circle-D…  no         red    \r\n"
              "    5          German N…  no         black  \r\n"
              "    6          Mil Tree   no         #00c853\r\n"
              "    7          Chevron    yes        red    \r\n"
              "    8          十字線十…  yes        red    \r\n");
}

TEST_F(TerminalTest, ColumnsGoesBeforeTheTerminalsOwnWidth) {
    const std::string narrow = shown({"list", "--color", "never"}, {40, 50});
    EXPECT_EQ(narrow.find("BYTES"), std::string::npos);
    EXPECT_EQ(shown({"list", "--color", "never"}, TerminalProcess::WIDE, {{"COLUMNS", "40"}}),
              narrow);
    EXPECT_NE(shown({"list"}, {40, 50}, {{"COLUMNS", "200"}}).find("BYTES"), std::string::npos);
}

TEST_F(TerminalTest, ALongUploadShowsItsProgress) {
    const std::string output = upload(UPLOAD_BYTES);
    EXPECT_NE(output.find("\rsending: "), std::string::npos) << output;
    EXPECT_NE(output.find(" of 293 KB (100 %)\r\n\x1B[1mINDEX"), std::string::npos) << output;
}

TEST_F(TerminalTest, AShortUploadShowsNone) {
    EXPECT_EQ(upload(SMALL_UPLOAD_BYTES).find("sending"), std::string::npos);
}

TEST_F(TerminalTest, AnUploadIntoAPipeShowsNone) {
    writeBig(UPLOAD_BYTES);
    const Reticlectl call = Reticlectl::run({"add", "Big", "/tmp/FL0/home/big.svg"});
    EXPECT_EQ(call.status, Reticlectl::DONE);
    EXPECT_EQ(call.error, "");
}

TEST_F(TerminalTest, StoredDataCannotSteerTheTerminal) {
    flash.write("home/evil.svg", "\"user_color\"\n\x1B]0;mine\x07\xC2\x9B\xE2\x80\xAE");
    ASSERT_EQ(Reticlectl::run({"add", "Evil", "/tmp/FL0/home/evil.svg"}).status, 0);
    EXPECT_TRUE(shown({"show", "8"}).starts_with("\"red\"\r\n\\x1B]0;mine\\x07\\x9B\\u202E"));
    EXPECT_EQ(Reticlectl::run({"show", "8"}).output,
              "\"red\"\n\x1B]0;mine\x07\xC2\x9B\xE2\x80\xAE");
}

TEST_F(TerminalTest, AWaitIsToldUntilItIsOver) {
    startDevice({"--fault", "silent"});
    TerminalProcess process(reticlectl({"--timeout", "2.5", "list"}));
    EXPECT_EQ(process.waitForEnd(), Reticlectl::NO_REPLY);
    const std::string& output = process.output();
    EXPECT_TRUE(
        output.starts_with("\rwaiting for 127.0.0.1:3451: 1 of 2.5 s\r"
                           "waiting for 127.0.0.1:3451: 2 of 2.5 s\r "))
        << output;
    EXPECT_NE(output.find(" \rreticlectl: no reply from "), std::string::npos) << output;
}

TEST_F(TerminalTest, APingSaysWhatItWaitsFor) {
    startDevice({"--fault", "silent"});
    TerminalProcess process(reticlectl({"--timeout", "1.5", "ping"}));
    EXPECT_EQ(process.waitForEnd(), Reticlectl::NO_REPLY);
    const std::string& output = process.output();
    EXPECT_NE(output.find("list requests\r\n\rwaiting for 127.0.0.1:3451: 1 of 1.5 s\r "),
              std::string::npos)
        << output;
    EXPECT_NE(output.find(" \rreticlectl: seq=1: no reply from "), std::string::npos) << output;
}

TEST_F(TerminalTest, CtrlCDuringAChangeSaysThatItMayBeDone) {
    startDevice({"--fault", "silent"});
    TerminalProcess process(reticlectl({"--timeout", "60", "activate", "3"}));
    ASSERT_TRUE(process.eventuallyShows("waiting for "));
    process.type("\x03");
    EXPECT_EQ(process.waitForEnd(), 128 + SIGINT);
    EXPECT_NE(process.output().find("reticlectl: cancelled; the change may have been carried out "
                                    "all the same: list the reticles before you repeat it\r\n"),
              std::string::npos)
        << process.output();
}

TEST_F(TerminalTest, AGalleryIsNotPrinted) {
    TerminalProcess process(reticlectl({"gallery"}));
    EXPECT_EQ(process.waitForEnd(), Reticlectl::USAGE);
    EXPECT_EQ(process.output().find("<!DOCTYPE"), std::string::npos);
}

}  // namespace
