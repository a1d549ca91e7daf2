#include "tests/system/ShellCompletions.h"

#include <gtest/gtest.h>

#include <sstream>
#include <utility>

#include "tests/system/Process.h"
#include "tests/system/Programs.h"
#include "tests/system/TerminalProcess.h"

namespace {

/// Standard output of a shell, which must find nothing wrong.
std::string run(const std::vector<std::string>& command) {
    Process process(command);
    EXPECT_EQ(process.waitForEnd(), 0);
    EXPECT_EQ(process.standardError(), "");
    return process.standardOutput();
}

/// The first word of each line.
ShellCompletions::Words firstWords(const std::string& text) {
    ShellCompletions::Words words;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        words.insert(line.substr(0, line.find('\t')));
    }
    return words;
}

/// Begins words as a person does, has the shell complete them, and sees what the program would get.
/// \param setUp a command line that loads the completions
void expectItCompletes(TerminalProcess& shell, const std::string& setUp, const std::string& program,
                       const std::string& typed, const std::string& expected) {
    ASSERT_TRUE(shell.eventuallyShows("ready> "));
    // Quoted, so that the command's own echo is not taken for what it prints.
    shell.type(setUp + "; " + program + "() { echo go''t: \"$@\"; }; echo load''ed\n");
    ASSERT_TRUE(shell.eventuallyShows("loaded")) << shell.output();
    shell.type(typed + "\n");
    EXPECT_TRUE(shell.eventuallyShows("got: " + expected)) << shell.output();
}

}  // namespace

ShellCompletions::ShellCompletions(std::string program, const std::string& directory)
    : _program(std::move(program)),
      _directory(programs::SOURCE_DIRECTORY + "/" + directory + "/") {}

ShellCompletions::Words ShellCompletions::offeredByBash(
    const std::vector<std::string>& words) const {
    std::vector<std::string> command{
        "bash", "--norc", "-c",
        R"(source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); $(complete -p "$1" | sed 's/.*-F \([^ ]*\).*/\1/'); printf '%s\n' "${COMPREPLY[@]}")",
        file(_program + ".bash")};
    command.insert(command.end(), words.begin(), words.end());
    Words offered = firstWords(run(command));
    offered.erase("");
    return offered;
}

ShellCompletions::Words ShellCompletions::offeredByFish(const std::string& line) const {
    return firstWords(run({"fish", "--no-config", "-c",
                           "source " + file(_program + ".fish") + "; complete -C '" + line + "'"}));
}

void ShellCompletions::expectZshReadsIt() const {
    run({"zsh", "-n", file("_" + _program)});
}

void ShellCompletions::expectBashCompletes(const std::string& typed,
                                           const std::string& expected) const {
    TerminalProcess shell({"bash", "--norc", "-i"}, TerminalProcess::WIDE, {{"PS1", "ready> "}});
    expectItCompletes(shell, "source " + file(_program + ".bash"), _program, typed, expected);
}

void ShellCompletions::expectZshCompletes(const std::string& typed,
                                          const std::string& expected) const {
    TerminalProcess shell({"zsh", "-f", "-i"}, TerminalProcess::WIDE, {{"PS1", "ready> "}});
    expectItCompletes(shell,
                      "fpath=('" + _directory + "' $fpath); autoload -Uz compinit; compinit -u -D",
                      _program, typed, expected);
}
