#pragma once

#include <ostream>
#include <string>

namespace reticlectl {

/// The FILE that stands for standard output.
constexpr const char* STANDARD_OUTPUT = "-";

/// Writes `text` to a file, in place of what was there, or to standard output. \throws Failure
/// (USAGE) when the file cannot be written; who writes to `standardOutput` checks it at the end.
void writeText(const std::string& file, const std::string& text, std::ostream& standardOutput);

}  // namespace reticlectl
