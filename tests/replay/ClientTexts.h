#pragma once

#include <string>
#include <vector>

#include "simulator/session/Session.h"

/// The requests of clients that lead to the exchanges of `session`: those that it holds, or else
/// those that the service's own requests tell of.
///
/// What a device did not see cannot be told: members that the service passes over, and requests
/// that failed before.
[[nodiscard]] std::vector<std::string> clientTexts(const sim::Session& session);
