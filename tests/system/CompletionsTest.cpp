#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "tests/support/FlashFiles.h"
#include "tests/support/Text.h"
#include "tests/system/PlayedDeviceTest.h"
#include "tests/system/ProgramHelp.h"
#include "tests/system/Programs.h"
#include "tests/system/ShellCompletions.h"
#include "tests/system/TerminalProcess.h"

namespace {

using Words = ShellCompletions::Words;

const Words COLOR_VALUES{"always", "auto", "never"};
const std::string TYPED = "reticlectl --jso\tpin\t--interv\t";
const std::string COMPLETED = "--json ping --interval";

const ShellCompletions COMPLETIONS("reticlectl", "tools/reticlectl/completions");

Words offeredByBash(const std::vector<std::string>& words) {
    return COMPLETIONS.offeredByBash(words);
}

Words offeredByFish(const std::string& line) {
    return COMPLETIONS.offeredByFish(line);
}

/// The commands and options that a command line may hold.
class CompletionsTest : public testing::Test {
protected:
    CompletionsTest() {
        setenv("HOME", "/tmp/FL0", 1);
        EXPECT_GE(program.commands.size(), 7U);
    }

    [[nodiscard]] Words optionsBehind(const std::string& command) const {
        Words options = ProgramHelp::of({programs::RETICLECTL, command}).options;
        options.insert(program.options.begin(), program.options.end());
        return options;
    }

    FlashFiles flash;
    ProgramHelp program = ProgramHelp::of({programs::RETICLECTL});
};

TEST_F(CompletionsTest, BashOffersTheCommands) {
    EXPECT_EQ(offeredByBash({"reticlectl", ""}), program.commands);
    EXPECT_EQ(offeredByBash({"reticlectl", "--timeout", "5", "--json", "pi"}), Words{"ping"});
    EXPECT_EQ(offeredByBash({"reticlectl", "--timeout", "=", "5", "pi"}), Words{"ping"});
}

TEST_F(CompletionsTest, BashOffersTheOptions) {
    EXPECT_EQ(offeredByBash({"reticlectl", "--"}), program.options);
    for (const std::string& command : program.commands) {
        EXPECT_EQ(offeredByBash({"reticlectl", command, "--"}), optionsBehind(command)) << command;
    }
}

TEST_F(CompletionsTest, BashOffersValues) {
    EXPECT_EQ(offeredByBash({"reticlectl", "--color", ""}), COLOR_VALUES);
    EXPECT_EQ(offeredByBash({"reticlectl", "--color", "="}), COLOR_VALUES);
    EXPECT_EQ(offeredByBash({"reticlectl", "--color", "=", "ne"}), Words{"never"});
    EXPECT_EQ(offeredByBash({"reticlectl", "--port", ""}), Words{});
    flash.write("home/ring.svg", "");
    const std::string part = "/tmp/FL0/home/r";
    const Words file{"/tmp/FL0/home/ring.svg"};
    EXPECT_EQ(offeredByBash({"reticlectl", "add", "Ring", part}), file);
    EXPECT_EQ(offeredByBash({"reticlectl", "add", part}), Words{});
    EXPECT_EQ(offeredByBash({"reticlectl", "update", "7", "Ring", part}), file);
    EXPECT_EQ(offeredByBash({"reticlectl", "show", "--output", part}), file);
}

TEST_F(CompletionsTest, BashItselfUsesTheFile) {
    COMPLETIONS.expectBashCompletes(TYPED, COMPLETED);
}

TEST_F(CompletionsTest, FishOffersTheCommands) {
    EXPECT_EQ(offeredByFish("reticlectl "), program.commands);
    EXPECT_EQ(offeredByFish("reticlectl --timeout 5 --json pi"), Words{"ping"});
}

TEST_F(CompletionsTest, FishOffersTheOptions) {
    EXPECT_EQ(offeredByFish("reticlectl --"), program.options);
    for (const std::string& command : program.commands) {
        EXPECT_EQ(offeredByFish("reticlectl " + command + " --"), optionsBehind(command))
            << command;
    }
}

TEST_F(CompletionsTest, FishOffersValues) {
    EXPECT_EQ(offeredByFish("reticlectl --color "), COLOR_VALUES);
    flash.write("home/ring.svg", "");
    const Words file{"/tmp/FL0/home/ring.svg"};
    EXPECT_EQ(offeredByFish("reticlectl add Ring /tmp/FL0/home/r"), file);
    EXPECT_EQ(offeredByFish("reticlectl add /tmp/FL0/home/r"), Words{});
    EXPECT_EQ(offeredByFish("reticlectl update 7 Ring /tmp/FL0/home/r"), file);
}

/// With a device behind the command line that is completed.
class IndexCompletionsTest : public PlayedDeviceTest {
protected:
    IndexCompletionsTest() {
        // The shells call the program by its name.
        const std::filesystem::path program = programs::RETICLECTL;
        const std::string path = program.parent_path().string() + ":" + ::getenv("PATH");
        ::setenv("PATH", path.c_str(), 1);
        ::setenv("HOME", "/tmp/FL0", 1);
    }

    static constexpr const char* OTHER_PORT = "3450";
};

TEST_F(IndexCompletionsTest, BashOffersThemWithTheirNames) {
    const Words offered = offeredByBash({"reticlectl", "show", ""});
    EXPECT_EQ(offered.size(), 8U);
    EXPECT_TRUE(offered.contains("0  (Duplex)"));
    EXPECT_TRUE(offered.contains("3  (BDC 7.62 mm)"));
    EXPECT_EQ(offeredByBash({"reticlectl", "--json", "activate", "3"}), Words{"3"});
    EXPECT_EQ(offeredByBash({"reticlectl", "update", "7"}), Words{"7"});
    EXPECT_EQ(offeredByBash({"reticlectl", "delete", "7", "6"}), Words{"6"});
    EXPECT_EQ(offeredByBash({"reticlectl", "show", "7", ""}), Words{});
}

TEST_F(IndexCompletionsTest, FishOffersThem) {
    const Words offered = offeredByFish("reticlectl show ");
    EXPECT_EQ(offered, (Words{"0", "1", "2", "3", "4", "5", "6", "7"}));
    EXPECT_EQ(offeredByFish("reticlectl --port 3451 activate 3"), Words{"3"});
    EXPECT_EQ(offeredByFish("reticlectl delete 7 6"), Words{"6"});
}

TEST_F(IndexCompletionsTest, ZshOffersThemWithTheirNames) {
    TerminalProcess shell({"zsh", "-f", "-i"}, TerminalProcess::WIDE, {{"PS1", "ready> "}});
    ASSERT_TRUE(shell.eventuallyShows("ready> "));
    shell.type("fpath=('" + programs::SOURCE_DIRECTORY +
               "/tools/reticlectl/completions' $fpath); autoload -Uz compinit; compinit -u -D; "
               "echo load''ed\n");
    ASSERT_TRUE(shell.eventuallyShows("loaded")) << shell.output();
    shell.type("reticlectl --port 3451 show \t\t");
    EXPECT_TRUE(shell.eventuallyShows("3  -- BDC 7.62 mm")) << shell.output();
}

TEST_F(IndexCompletionsTest, WithoutAServiceNothingIsOffered) {
    EXPECT_EQ(offeredByBash({"reticlectl", "--port", "=", OTHER_PORT, "show", ""}), Words{});
    EXPECT_EQ(offeredByBash({"reticlectl", "--port", OTHER_PORT, "show", ""}), Words{});
    EXPECT_EQ(offeredByFish("reticlectl --port=" + std::string(OTHER_PORT) + " show "), Words{});
}

TEST_F(CompletionsTest, ZshNamesTheCommandsAndOptions) {
    COMPLETIONS.expectZshReadsIt();
    const std::string text = contentOfFile(COMPLETIONS.file("_reticlectl"));
    EXPECT_EQ(ProgramHelp::optionsIn(text.substr(0, text.find("local -a commands"))),
              program.options);
    for (const std::string& command : program.commands) {
        EXPECT_TRUE(std::regex_search(text, std::regex("\n +'" + command + ":"))) << command;
        // What is offered behind it stands between its name and the next two semicolons.
        std::smatch branch;
        EXPECT_TRUE(std::regex_search(text, branch, std::regex("\n +" + command + "\\)([^;]*);;")))
            << command;
        Words options = ProgramHelp::optionsIn(branch.str(1));
        options.insert(program.options.begin(), program.options.end());
        EXPECT_EQ(options, optionsBehind(command)) << command;
    }
}

TEST_F(CompletionsTest, ZshItselfUsesTheFile) {
    COMPLETIONS.expectZshCompletes(TYPED, COMPLETED);
}

}  // namespace
