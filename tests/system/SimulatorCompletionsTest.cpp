#include <gtest/gtest.h>

#include <string>

#include "tests/support/FlashFiles.h"
#include "tests/support/Text.h"
#include "tests/system/Process.h"
#include "tests/system/ProgramHelp.h"
#include "tests/system/Programs.h"
#include "tests/system/ShellCompletions.h"

namespace {

using Words = ShellCompletions::Words;

const std::string TYPED = "rtos-sim ctl /tmp/some.sock faul\ts of\t";
const std::string COMPLETED = "ctl /tmp/some.sock faults off";

/// Without the colons behind which arguments stand.
Words withoutColons(const Words& words) {
    Words plain;
    for (const std::string& word : words) {
        plain.insert(word.substr(0, word.find(':')));
    }
    return plain;
}

/// What the help names is what the shells offer.
class SimulatorCompletionsTest : public testing::Test {
protected:
    SimulatorCompletionsTest() {
        ::setenv("HOME", "/tmp/FL0", 1);
        flash.write("home/one.session", "");
        EXPECT_GE(commands.size(), 12U);
        EXPECT_GE(faults.size(), 12U);
    }

    static std::string help(std::vector<std::string> command) {
        command.emplace_back("--help");
        Process process(command);
        EXPECT_EQ(process.waitForEnd(), 0);
        return process.standardOutput();
    }

    FlashFiles flash;
    ShellCompletions completions{"rtos-sim", "simulator/completions"};
    Words options = ProgramHelp::of({programs::RTOS_SIM}).options;
    Words commands = ProgramHelp::entriesIn(help({programs::RTOS_SIM, "ctl"}));
    Words faults = ProgramHelp::entriesIn(help({programs::RTOS_SIM}));
    const std::string part = "/tmp/FL0/home/o";
    const Words file{"/tmp/FL0/home/one.session"};
};

TEST_F(SimulatorCompletionsTest, BashOffersOptionsAndValues) {
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "--"}), options);
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "c"}), Words{"ctl"});
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "--reset", "c"}), Words{});
    EXPECT_EQ(withoutColons(completions.offeredByBash({"rtos-sim", "--fault", ""})), faults);
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "--fault", "=", "si"}), Words{"silent"});
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "--replay", part}), file);
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "--root", part}), Words{});
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "--port", ""}), Words{});
}

TEST_F(SimulatorCompletionsTest, BashOffersCommandsAndTheirWords) {
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "ctl", part}), file);
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "ctl", "--"}), Words{"--help"});
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "ctl", "s", ""}), commands);
    EXPECT_EQ(withoutColons(completions.offeredByBash({"rtos-sim", "ctl", "s", "fault", ""})),
              faults);
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "ctl", "s", "fault", "long", ""}),
              (Words{"next", "every"}));
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "ctl", "s", "fault", "delay", ":", "3", "e"}),
              Words{"every"});
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "ctl", "s", "faults", ""}), Words{"off"});
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "ctl", "s", "add", part}), Words{});
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "ctl", "s", "add", "Ring", part}), file);
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "ctl", "s", "deletable", "7", ""}),
              (Words{"yes", "no"}));
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "ctl", "s", "restart", "-"}), Words{"--down"});
    EXPECT_EQ(completions.offeredByBash({"rtos-sim", "ctl", "s", "activate", ""}), Words{});
}

TEST_F(SimulatorCompletionsTest, BashItselfUsesTheFile) {
    completions.expectBashCompletes(TYPED, COMPLETED);
}

TEST_F(SimulatorCompletionsTest, FishOffersOptionsAndValues) {
    EXPECT_EQ(completions.offeredByFish("rtos-sim --"), options);
    EXPECT_EQ(completions.offeredByFish("rtos-sim c"), Words{"ctl"});
    EXPECT_EQ(completions.offeredByFish("rtos-sim --reset c"), Words{});
    EXPECT_EQ(withoutColons(completions.offeredByFish("rtos-sim --fault ")), faults);
    EXPECT_EQ(completions.offeredByFish("rtos-sim --replay " + part), file);
}

TEST_F(SimulatorCompletionsTest, FishOffersCommandsAndTheirWords) {
    EXPECT_EQ(completions.offeredByFish("rtos-sim ctl " + part), file);
    EXPECT_EQ(completions.offeredByFish("rtos-sim ctl --"), Words{"--help"});
    EXPECT_EQ(completions.offeredByFish("rtos-sim ctl s "), commands);
    EXPECT_EQ(withoutColons(completions.offeredByFish("rtos-sim ctl s fault ")), faults);
    EXPECT_EQ(completions.offeredByFish("rtos-sim ctl s fault delay:3 "), (Words{"next", "every"}));
    EXPECT_EQ(completions.offeredByFish("rtos-sim ctl s faults "), Words{"off"});
    EXPECT_EQ(completions.offeredByFish("rtos-sim ctl s add " + part), Words{});
    EXPECT_EQ(completions.offeredByFish("rtos-sim ctl s add Ring " + part), file);
    EXPECT_EQ(completions.offeredByFish("rtos-sim ctl s deletable 7 "), (Words{"yes", "no"}));
    EXPECT_EQ(completions.offeredByFish("rtos-sim ctl s restart -"), Words{"--down"});
    EXPECT_EQ(completions.offeredByFish("rtos-sim ctl s activate "), Words{});
}

TEST_F(SimulatorCompletionsTest, ZshNamesOptionsCommandsAndFaults) {
    completions.expectZshReadsIt();
    const std::string text = contentOfFile(completions.file("_rtos-sim"));
    Words all = options;
    all.insert("--down");
    EXPECT_EQ(ProgramHelp::optionsIn(text), all);
    for (const std::string& command : commands) {
        EXPECT_NE(text.find("        '" + command + ":"), std::string::npos) << command;
    }
    const std::size_t start = text.find("_rtos_sim_faults()");
    const std::string kinds = text.substr(start, text.find('}', start) - start);
    for (const std::string& fault : faults) {
        EXPECT_NE(kinds.find(" " + fault), std::string::npos) << fault;
    }
}

TEST_F(SimulatorCompletionsTest, ZshItselfUsesTheFile) {
    completions.expectZshCompletes(TYPED, COMPLETED);
}

}  // namespace
