#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "simulator/device/ReticleList.h"

namespace sim {

/// What a device has when it leaves the factory. The last one stands for a reticle that a user
/// made: it alone is deletable.
[[nodiscard]] const ReticleList& factoryReticles();

/// The data of each factory reticle by the "fileName" that `factoryReticles` gives it.
[[nodiscard]] const std::map<std::string, std::string_view, std::less<>>& factoryReticleTexts();

}  // namespace sim
