#pragma once

#include <string>
#include <vector>

#include "client/Reticle.h"

namespace reticlectl {

/// The reticles as a table with a head line, one line each, in the given order, columns aligned.
/// The index is "-" where the device gave none that a command can take, the colour where the data
/// shows none (see client/UserColor.h). The size is that of the data as it came, colour put in.
/// An empty list gives one line that says so.
[[nodiscard]] std::string renderTable(const std::vector<reticle::Reticle>& reticles);

}  // namespace reticlectl
