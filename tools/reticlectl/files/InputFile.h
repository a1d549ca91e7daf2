#pragma once

#include <istream>
#include <string>

namespace reticlectl {

/// The FILE that stands for standard input.
constexpr const char* STANDARD_INPUT = "-";

/// The bytes of a file, as many as could ever be sent and no more, so that a device file without
/// end is refused as too large instead of being read for ever. \throws Failure (USAGE) when the
/// file cannot be read.
[[nodiscard]] std::string readText(const std::string& file, std::istream& standardInput);

}  // namespace reticlectl
