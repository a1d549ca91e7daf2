#pragma once

#include <optional>
#include <string>

#include "tools/reticlectl/doctor/Finding.h"
#include "tools/reticlectl/doctor/StorageState.h"

namespace reticlectl {

constexpr const char* STORAGE_DIRECTORY = "/tmp/FL0";

/// Whether the service can store data for the RTOS.
/// \param user that the service runs as; nothing when that is not known.
[[nodiscard]] Finding judgeStorage(const StorageState& state,
                                   const std::optional<ServiceUser>& user);

/// Whether data of requests has been left behind.
[[nodiscard]] Finding judgeDataFiles(const StorageState& state);

}  // namespace reticlectl
