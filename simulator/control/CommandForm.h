#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

/// A command for the running simulator, in its words.
using Words = std::vector<std::string>;

/// How one command is written.
struct CommandForm {
    std::string_view name;       ///< its first word
    std::string_view arguments;  ///< its further words, for people
    std::size_t minArguments = 0;
    std::size_t maxArguments = 0;
    std::string_view help;
};

/// Follows the events; it has no result, and so is none of those that are carried out.
inline constexpr std::string_view EVENTS_COMMAND = "events";

/// The form of the command `words`.
/// \throws std::runtime_error, for people, where there is no such command, or with another number
///         of arguments.
const CommandForm& formOf(const Words& words);

/// What --help says of the commands: a paragraph for each.
[[nodiscard]] std::string commandHelp();

}  // namespace sim
