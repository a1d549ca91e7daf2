#pragma once

#include <vector>

#include "tools/reticlectl/doctor/Finding.h"

namespace reticlectl {

/// Looks at what the service stands on, on the machine that this runs on: port, RTOS, storage, units,
/// journal, versions. Changes nothing and connects to nobody. Takes 5 s at most for each program of
/// the system that is asked, of which there are five.
[[nodiscard]] std::vector<Finding> examineDevice();

}  // namespace reticlectl
