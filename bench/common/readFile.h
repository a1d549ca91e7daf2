#pragma once

#include <string>
#include <string_view>

namespace reticled::bench {

/// Reads a whole file with one read of the size that the file system announces.
/// \throws std::system_error
[[nodiscard]] std::string readFile(const std::string& path);

/// The same into `room`, which grows as it must and is not cleared: what it held costs nothing again.
/// \return the content, within `room`.
[[nodiscard]] std::string_view readFile(const std::string& path, std::string& room);

}  // namespace reticled::bench
