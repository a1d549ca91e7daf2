#pragma once

#include <istream>
#include <ostream>
#include <string>

namespace reticlectl {

/// The FILE that stands for standard input, and for standard output.
constexpr const char* STANDARD_STREAM = "-";

/// The bytes of a file, as many as could ever be sent and no more, so that a device file without
/// end is refused as too large instead of being read for ever. \throws Failure (USAGE) when the
/// file cannot be read.
[[nodiscard]] std::string readText(const std::string& file, std::istream& standardInput);

/// Writes `text` to a file, in place of what was there, or to standard output. \throws Failure
/// (USAGE) when the file cannot be written; who writes to `standardOutput` checks it at the end.
void writeText(const std::string& file, const std::string& text, std::ostream& standardOutput);

}  // namespace reticlectl
