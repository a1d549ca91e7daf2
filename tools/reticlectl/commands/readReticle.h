#pragma once

#include <string>
#include <vector>

#include "reticle-client/Reticle.h"
#include "tools/reticlectl/commands/Session.h"

namespace reticlectl {

/// A reticle of this name with the data of a file, as `readText` has it.
[[nodiscard]] reticle::NewReticle readReticle(const Session& session, const std::string& name,
                                              const std::string& file);

/// Tells the user which of the reticles, now stored, will not show the user's colour.
void warnOfFixedColors(const Session& session, const std::vector<reticle::NewReticle>& reticles);

}  // namespace reticlectl
