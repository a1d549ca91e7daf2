#pragma once

#include <string>

namespace reticlectl {

/// CLI11 takes an argument in square brackets for a list and takes it apart, but a reticle or a
/// file may bear such a name. So every argument is shielded before the parsing and unshielded as a
/// value.
[[nodiscard]] std::string shieldBrackets(const std::string& argument);

/// The inverse of shieldBrackets.
[[nodiscard]] std::string unshieldBrackets(const std::string& argument);

}  // namespace reticlectl
