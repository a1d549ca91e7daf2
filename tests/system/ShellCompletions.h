#pragma once

#include <set>
#include <string>
#include <vector>

/// What shells make of a program's completions.
class ShellCompletions {
public:
    using Words = std::set<std::string>;

    /// \param directory where its files are, relative to the sources: PROGRAM.bash, PROGRAM.fish and
    ///        _PROGRAM
    ShellCompletions(std::string program, const std::string& directory);

    [[nodiscard]] std::string file(const std::string& name) const { return _directory + name; }

    /// What bash offers for the last of `words`, the first of which is the program.
    [[nodiscard]] Words offeredByBash(const std::vector<std::string>& words) const;

    /// What fish offers behind the end of `line`.
    [[nodiscard]] Words offeredByFish(const std::string& line) const;

    /// Has zsh say what is wrong with its file.
    void expectZshReadsIt() const;

    /// Has bash, or zsh, on a terminal complete `typed`, which a person types; the program must get
    /// the words `expected`. `typed` begins with the program.
    void expectBashCompletes(const std::string& typed, const std::string& expected) const;
    void expectZshCompletes(const std::string& typed, const std::string& expected) const;

private:
    std::string _program;
    std::string _directory;
};
