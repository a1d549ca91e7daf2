#pragma once

#include <string>

namespace reticlectl {

/// Accepts a length of time as the options take it: seconds, fractions allowed.
/// \returns what is wrong with `text`, nothing when it is one.
[[nodiscard]] std::string checkSeconds(const std::string& text);

/// The seconds as a person writes them: 2, 0.5.
[[nodiscard]] std::string secondsText(double seconds);

}  // namespace reticlectl
