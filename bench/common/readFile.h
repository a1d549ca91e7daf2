#pragma once

#include <string>

namespace reticled::bench {

/// Reads a whole file with one read of the size that the file system announces.
/// \throws std::system_error
[[nodiscard]] std::string readFile(const std::string& path);

}  // namespace reticled::bench
