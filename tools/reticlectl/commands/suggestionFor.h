#pragma once

#include <string>

#include <CLI/App.hpp>

namespace reticlectl {

/// " (did you mean NAME?)" for the command of `app` that a person may have meant by `misspelt`: it
/// begins with it, or one or two letters of it were left out, put in, changed or swapped with the
/// next. The nearest, of equally near ones the first; an empty text where none is near.
[[nodiscard]] std::string suggestionFor(const std::string& misspelt, const CLI::App& app);

}  // namespace reticlectl
