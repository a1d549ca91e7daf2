#pragma once

#include <set>
#include <string>
#include <vector>

/// What a program's --help names.
struct ProgramHelp {
    /// With their dashes, "--help".
    std::set<std::string> options;
    std::set<std::string> commands;

    /// Runs `command --help`.
    /// \throws std::runtime_error when it does not end with status 0.
    [[nodiscard]] static ProgramHelp of(std::vector<std::string> command);

    /// The names in a list of paragraphs such as "  delay:MS", each indented by two blanks.
    [[nodiscard]] static std::set<std::string> entriesIn(const std::string& text);

    /// The long options that a text mentions anywhere.
    [[nodiscard]] static std::set<std::string> optionsIn(const std::string& text);
};
