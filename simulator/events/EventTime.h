#pragma once

#include <chrono>
#include <string>

namespace sim {

/// `time` as "2026-11-22T00:10:00.123Z".
[[nodiscard]] std::string eventTime(std::chrono::system_clock::time_point time);

}  // namespace sim
