#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "simulator/CommandLine.h"

namespace sim {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

constexpr int NOT_SET = -1;

struct Parsed {
    std::optional<Options> options;
    int exitStatus = NOT_SET;
    std::string out;
    std::string err;
};

Parsed parse(const std::vector<std::string>& arguments) {
    std::vector<const char*> argv{"rtos-sim"};
    for (const std::string& argument : arguments) {
        argv.push_back(argument.c_str());
    }
    Parsed parsed;
    CaptureStdout();
    CaptureStderr();
    parsed.options =
        parseCommandLine(static_cast<int>(argv.size()), argv.data(), parsed.exitStatus);
    parsed.out = GetCapturedStdout();
    parsed.err = GetCapturedStderr();
    return parsed;
}

TEST(CommandLine, HasDefaultsForEverything) {
    const Parsed parsed = parse({});
    ASSERT_TRUE(parsed.options);
    EXPECT_EQ(parsed.options->root, "/tmp/FL0");
    EXPECT_EQ(parsed.options->port, 3425);
    EXPECT_EQ(parsed.options->limits.reticles, 32U);
    EXPECT_EQ(parsed.options->limits.bytes, 64'000'000U);
    EXPECT_FALSE(parsed.options->isReset);
    EXPECT_FALSE(parsed.options->isVerbose);
    EXPECT_TRUE(parsed.options->faults.empty());
    EXPECT_FALSE(parsed.options->webAddress);
    EXPECT_EQ(parsed.exitStatus, NOT_SET);
}

TEST(CommandLine, ReadsEveryOption) {
    const Parsed parsed = parse({"--root", "/tmp/x", "--port=0", "--max-reticles", "5",
                                 "--max-bytes", "1", "--reset", "--verbose", "--fault",
                                 "delay:10@2", "--fault", "silent", "--web", "192.168.1.7:80"});
    ASSERT_TRUE(parsed.options) << parsed.err;
    EXPECT_EQ(parsed.options->root, "/tmp/x");
    EXPECT_EQ(parsed.options->port, 0);
    EXPECT_EQ(parsed.options->limits.reticles, 5U);
    EXPECT_EQ(parsed.options->limits.bytes, 1U);
    EXPECT_TRUE(parsed.options->isReset);
    EXPECT_TRUE(parsed.options->isVerbose);
    ASSERT_TRUE(parsed.options->webAddress);
    EXPECT_EQ(parsed.options->webAddress->host, "192.168.1.7");
    EXPECT_EQ(parsed.options->webAddress->port, 80);
    EXPECT_THAT(parsed.options->faults,
                ElementsAre(Fault{FaultKind::DELAY, 10, 2}, Fault{FaultKind::SILENT, 0, {}}));
}

TEST(CommandLine, ReadsWhatToDoWithSessions) {
    EXPECT_EQ(parse({"--record", "a", "--fault", "silent"}).options->recordFile, "a");
    EXPECT_EQ(parse({"--replay", "b", "--root", "r"}).options->replayFile, "b");
    EXPECT_EQ(parse({"--from-log", "c"}).options->fromLogFile, "c");
}

TEST(CommandLine, ReadsWhereCommandsComeFrom) {
    EXPECT_EQ(parse({"--control", "s"}).options->controlPath, "s");
    EXPECT_EQ(parse({"--control", "s", "--replay", "b"}).options->controlPath, "s");
}

TEST(CommandLine, ReadsCommandsForARunningSimulator) {
    EXPECT_TRUE(parse({}).options->command.empty());
    const Parsed parsed = parse({"ctl", "s", "color", "3", "[a, b]"});
    ASSERT_TRUE(parsed.options) << parsed.err;
    EXPECT_EQ(parsed.options->commandPath, "s");
    EXPECT_THAT(parsed.options->command, ElementsAre("color", "3", "[a, b]"));
    EXPECT_THAT(parse({"ctl", "s", "restart", "--down", "2"}).options->command,
                ElementsAre("restart", "--down", "2"));
    EXPECT_THAT(parse({"ctl", "s", "rename", "3", "--help"}).options->command,
                ElementsAre("rename", "3", "--help"));
}

TEST(CommandLine, RefusesCommandsThatCannotBe) {
    for (const auto& [arguments, complaint] :
         std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"ctl"}, "PATH is required"},
             {{"ctl", "s"}, "no command is called ''"},
             {{"ctl", "s", "explode"}, "no command is called 'explode'"},
             {{"ctl", "s", "color", "3"}, "the command is: color N COLOUR"},
             {{"--port", "5", "ctl", "s", "status"}, "--port makes no sense with ctl"}}) {
        const Parsed parsed = parse(arguments);
        EXPECT_FALSE(parsed.options) << complaint;
        EXPECT_EQ(parsed.exitStatus, 2) << complaint;
        EXPECT_EQ(parsed.err, "rtos-sim: " + complaint + ": see rtos-sim ctl --help\n");
    }
}

TEST(CommandLine, PrintsHelpForEveryCommand) {
    const Parsed parsed = parse({"ctl", "--help"});
    EXPECT_EQ(parsed.exitStatus, 0);
    EXPECT_THAT(parsed.out, HasSubstr(commandHelp()));
}

TEST(CommandLine, RefusesMistakesWithStatus2AndTheReason) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> mistakes = {
        {{"--fault", "bang"}, "no fault is called 'bang'"},
        {{"--fault", "silent", "close"}, "close"},
        {{"--fault"}, "--fault"},
        {{"--port", "65536"}, R"(--port: "65536" is not a number from 0 to 65535)"},
        {{"--port", "-1"}, R"(--port: "-1" is not a number from 0 to 65535)"},
        {{"--port", "x"}, R"(--port: "x" is not a number from 0 to 65535)"},
        {{"--max-reticles", "0"}, R"(--max-reticles: "0" is not a number from 1 to 100000)"},
        {{"--max-reticles", "99999999999999999999999"},
         R"(--max-reticles: "99999999999999999999999" is not a number from 1 to 100000)"},
        {{"--max-bytes", "0"}, R"(--max-bytes: "0" is not a number from 1 to )"},
        {{"--max-bytes", "64MB"}, R"(--max-bytes: "64MB" is not a number from 1 to )"},
        {{"--replay", "a", "--record", "b"}, "--record makes no sense with --replay"},
        {{"--replay", "a", "--fault", "silent"}, "--fault makes no sense with --replay"},
        {{"--replay", "a", "--reset"}, "--reset makes no sense with --replay"},
        {{"--replay", "a", "--max-bytes", "9"}, "--max-bytes makes no sense with --replay"},
        {{"--from-log", "a", "--replay", "b"}, "--replay makes no sense with --from-log"},
        {{"--from-log", "a", "--root", "b"}, "--root makes no sense with --from-log"},
        {{"--from-log", "a", "--control", "b"}, "--control makes no sense with --from-log"},
        {{"--from-log", "a", "--web", "80"}, "--web makes no sense with --from-log"},
        {{"--replay", "a", "--web", "80"}, "--web makes no sense with --replay"},
        {{"--web", "page"}, R"(--web page: "page" is not a port, a number from 0 to 65535)"},
        {{"--record"}, "--record"},
        {{"--frequency"}, "unknown argument --frequency"},
        {{"extra"}, "unknown argument extra"}};
    for (const auto& [arguments, complaint] : mistakes) {
        const Parsed parsed = parse(arguments);
        EXPECT_FALSE(parsed.options) << complaint;
        EXPECT_EQ(parsed.exitStatus, 2) << complaint;
        EXPECT_THAT(parsed.err, StartsWith("rtos-sim: "));
        EXPECT_THAT(parsed.err, HasSubstr(complaint));
        EXPECT_THAT(parsed.err, EndsWith(": see rtos-sim --help\n"));
        EXPECT_EQ(parsed.out, "");
    }
}

TEST(CommandLine, PrintsHelpForEveryOptionAndFault) {
    const Parsed parsed = parse({"--help"});
    EXPECT_FALSE(parsed.options);
    EXPECT_EQ(parsed.exitStatus, 0);
    for (const char* text : {"--version", "--root DIR", "--port PORT", "--max-reticles COUNT=32",
                             "--max-bytes BYTES=64000000", "--reset", "--verbose",
                             "--fault KIND[:ARG][@N]", "--control PATH", "--web [ADDRESS:]PORT",
                             "--record FILE", "--replay FILE", "--from-log FILE"}) {
        EXPECT_THAT(parsed.out, HasSubstr(text));
    }
    EXPECT_THAT(parsed.out, HasSubstr(faultHelp()));
    EXPECT_THAT(parsed.out, Not(HasSubstr("Excludes")));
}

TEST(CommandLine, PrintsTheVersion) {
    const Parsed parsed = parse({"--version"});
    EXPECT_FALSE(parsed.options);
    EXPECT_EQ(parsed.exitStatus, 0);
    EXPECT_EQ(parsed.out, "rtos-sim " RETICLED_VERSION "\n");
}

}  // namespace
}  // namespace sim
