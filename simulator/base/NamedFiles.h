#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

// The files that the texts of an exchange name, relative to the root. Names that lead out of it
// are left out.

/// What the device calls the root of its files, in front of each name.
inline constexpr std::string_view DEVICE_ROOT = "a:/";

/// The directory of the reticle files, with a slash at its end.
inline constexpr const char* RETICLES_DIRECTORY = "reticle/";

/// The file with new data that a request of the service names.
[[nodiscard]] std::optional<std::string> newDataNamedBy(const std::string& request);

/// The list file that the service takes from an answer of the device: the last one that is named.
[[nodiscard]] std::optional<std::string> listFileNamedBy(const std::string& answer);

/// The reticle files that a list file names, each once, in their order.
[[nodiscard]] std::vector<std::string> reticleFilesNamedBy(const std::string& listText);

}  // namespace sim
