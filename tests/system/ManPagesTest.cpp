#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/support/Text.h"
#include "tests/system/Process.h"
#include "tests/system/ProgramHelp.h"
#include "tests/system/Programs.h"

namespace {

/// A built page, its escapes for dashes taken out.
std::string page(const std::string& name) {
    return std::regex_replace(contentOfFile(programs::BUILD_DIRECTORY + "/man/" + name),
                              std::regex(R"(\\-)"), "-");
}

std::string help(std::vector<std::string> command) {
    command.emplace_back("--help");
    Process process(command);
    EXPECT_EQ(process.waitForEnd(), 0);
    return process.standardOutput();
}

/// Of the line "NAME VERSION".
std::string versionOf(const std::string& program) {
    Process process({program, "--version"});
    EXPECT_EQ(process.waitForEnd(), 0);
    const std::string output = process.standardOutput();
    const std::size_t begin = output.find(' ') + 1;
    return output.substr(begin, output.find('\n') - begin);
}

bool namesInBold(const std::string& text, const std::string& word) {
    return text.find("\\fB" + word + "\\fR") != std::string::npos;
}

TEST(ManPagesTest, ReticlectlHasEveryCommandAndOptionAndNoOther) {
    const std::string text = page("reticlectl.1");
    const ProgramHelp program = ProgramHelp::of({programs::RETICLECTL});
    std::set<std::string> options = program.options;
    EXPECT_GE(program.commands.size(), 7U);
    for (const std::string& command : program.commands) {
        EXPECT_TRUE(namesInBold(text, command)) << command;
        options.merge(ProgramHelp::of({programs::RETICLECTL, command}).options);
    }
    EXPECT_EQ(ProgramHelp::optionsIn(text), options);
}

TEST(ManPagesTest, RtosSimHasEveryOptionFaultAndCommandAndNoOtherOption) {
    const std::string text = page("rtos-sim.1");
    std::set<std::string> options = ProgramHelp::of({programs::RTOS_SIM}).options;
    options.merge(ProgramHelp::optionsIn(help({programs::RTOS_SIM, "ctl"})));
    EXPECT_EQ(ProgramHelp::optionsIn(text), options);

    const std::set<std::string> faults = ProgramHelp::entriesIn(help({programs::RTOS_SIM}));
    EXPECT_GE(faults.size(), 12U);
    const std::set<std::string> commands =
        ProgramHelp::entriesIn(help({programs::RTOS_SIM, "ctl"}));
    EXPECT_GE(commands.size(), 12U);
    for (const std::set<std::string>& names : {faults, commands}) {
        for (const std::string& name : names) {
            EXPECT_TRUE(namesInBold(text, name)) << name;
        }
    }
}

TEST(ManPagesTest, ReticlectlHasEveryExitStatus) {
    const std::string text = page("reticlectl.1");
    const std::string described = help({programs::RETICLECTL});
    const std::string statuses = described.substr(described.find("Exit status: "));
    const std::regex status("([0-9]) ");
    for (std::sregex_iterator match(statuses.begin(), statuses.end(), status), end; match != end;
         ++match) {
        EXPECT_TRUE(namesInBold(text, (*match)[1])) << (*match)[1];
    }
}

TEST(ManPagesTest, TheDaemonHasNoOptions) {
    const std::string text = page("reticled.8");
    EXPECT_NE(text.find("NAME"), std::string::npos);
    EXPECT_EQ(ProgramHelp::optionsIn(text), std::set<std::string>{});
}

TEST(ManPagesTest, TheForegroundServiceHasEveryOptionAndNoOther) {
    const std::set<std::string> options = ProgramHelp::of({programs::RETICLED_FOREGROUND}).options;
    EXPECT_EQ(options, (std::set<std::string>{"--help", "--log-bytes", "--version"}));
    EXPECT_EQ(ProgramHelp::optionsIn(page("reticled-foreground.8")), options);
}

TEST(ManPagesTest, EachNamesTheVersionOfThePrograms) {
    const std::string version = versionOf(programs::RETICLECTL);
    EXPECT_EQ(versionOf(programs::RTOS_SIM), version);
    EXPECT_EQ(versionOf(programs::RETICLED_FOREGROUND), version);
    for (const char* name : {"reticlectl.1", "reticled.8", "reticled-foreground.8", "rtos-sim.1"}) {
        EXPECT_NE(page(name).find("\"reticled " + version + "\""), std::string::npos) << name;
    }
}

}  // namespace
