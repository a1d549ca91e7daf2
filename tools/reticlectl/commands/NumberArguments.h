#pragma once

#include <string>

#include <CLI/App.hpp>

namespace reticlectl {

/// Accepts decimal numbers of a range alone: by itself the parser also takes "true" for 1 and "010"
/// for 8. \return what is wrong with `text`, nothing when it is one.
[[nodiscard]] std::string checkNumber(const std::string& text, int smallest, int largest);

[[nodiscard]] std::string checkIndex(const std::string& text);

[[nodiscard]] std::string checkPort(const std::string& text);

/// Declares the argument INDEX of a command.
/// \param value an int, or a vector of them for a command that takes several; must outlive the
/// parsing.
template <class Value>
void addIndexArgument(CLI::App& command, Value& value) {
    command.add_option("INDEX", value, "The reticle's index, as the list shows it")
        ->required()
        ->check(&checkIndex);
}

/// Accepts a length of time as the options take it: seconds, fractions allowed.
/// \return what is wrong with `text`, nothing when it is one.
[[nodiscard]] std::string checkSeconds(const std::string& text);

/// The seconds as a person writes them: 2, 0.5.
[[nodiscard]] std::string secondsText(double seconds);

}  // namespace reticlectl
