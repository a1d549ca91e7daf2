#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/FlashFiles.h"
#include "tests/support/Text.h"
#include "tests/system/PlayedDeviceTest.h"
#include "tests/system/Process.h"
#include "tests/system/ProgramHelp.h"
#include "tests/system/Programs.h"
#include "tests/system/TerminalProcess.h"

namespace {

using Words = std::set<std::string>;

const Words COLOR_VALUES{"always", "auto", "never"};

std::string completionFile(const std::string& name) {
    return programs::SOURCE_DIRECTORY + "/tools/reticlectl/completions/" + name;
}

/// Standard output of a shell, which must find nothing wrong.
std::string run(const std::vector<std::string>& command) {
    Process process(command);
    EXPECT_EQ(process.waitForEnd(), 0);
    EXPECT_EQ(process.standardError(), "");
    return process.standardOutput();
}

/// The first word of each line.
Words firstWords(const std::string& text) {
    Words words;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        words.insert(line.substr(0, line.find('\t')));
    }
    return words;
}

/// What bash offers for the last of `words`.
Words offeredByBash(const std::vector<std::string>& words) {
    std::vector<std::string> command{
        "bash", "--norc", "-c",
        R"(source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); $(complete -p reticlectl | sed 's/.*-F \([^ ]*\).*/\1/'); printf '%s\n' "${COMPREPLY[@]}")",
        completionFile("reticlectl.bash")};
    command.insert(command.end(), words.begin(), words.end());
    Words offered = firstWords(run(command));
    offered.erase("");
    return offered;
}

/// What fish offers behind the end of `line`.
Words offeredByFish(const std::string& line) {
    return firstWords(
        run({"fish", "--no-config", "-c",
             "source " + completionFile("reticlectl.fish") + "; complete -C '" + line + "'"}));
}

/// Begins words as a person does, has the shell complete them, and sees what the program would get.
/// \param setUp a command line that loads the completions.
void expectItCompletes(TerminalProcess& shell, const std::string& setUp) {
    // Quoted, so that the command's own echo is not taken for what it prints.
    shell.type(setUp + "; reticlectl() { echo go''t: \"$@\"; }; echo load''ed\n");
    ASSERT_TRUE(shell.eventuallyShows("loaded")) << shell.output();
    shell.type("reticlectl --jso\tpin\t--interv\t\n");
    EXPECT_TRUE(shell.eventuallyShows("got: --json ping --interval")) << shell.output();
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
    TerminalProcess shell({"bash", "--norc", "-i"}, TerminalProcess::WIDE, {{"PS1", "ready> "}});
    ASSERT_TRUE(shell.eventuallyShows("ready> "));
    expectItCompletes(shell, "source " + completionFile("reticlectl.bash"));
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
    run({"zsh", "-n", completionFile("_reticlectl")});
    const std::string text = contentOfFile(completionFile("_reticlectl"));
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
    TerminalProcess shell({"zsh", "-f", "-i"}, TerminalProcess::WIDE, {{"PS1", "ready> "}});
    ASSERT_TRUE(shell.eventuallyShows("ready> "));
    expectItCompletes(shell, "fpath=('" + programs::SOURCE_DIRECTORY +
                                 "/tools/reticlectl/completions' $fpath); "
                                 "autoload -Uz compinit; compinit -u -D");
}

}  // namespace
