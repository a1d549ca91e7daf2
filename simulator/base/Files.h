#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace sim {

/// Where a file is written before it takes its name.
[[nodiscard]] std::filesystem::path aside(std::filesystem::path path);

/// Writes the file aside and renames it, so that its readers see the old text or the new one.
/// \throws std::runtime_error when the file system fails.
void replaceFile(const std::filesystem::path& path, std::string_view text);

/// The file, byte for byte; none where no regular file that can be read has this path.
[[nodiscard]] std::optional<std::string> readFile(const std::filesystem::path& path);

/// Whether `name`, appended to a directory, names something below it, by the text alone: not
/// empty, not absolute, without "..", zero bytes and newlines.
[[nodiscard]] bool staysInside(const std::string& name);

}  // namespace sim
