#pragma once

#include <string>

#include "simulator/events/Event.h"

namespace sim {

/// `event` on one line for people: time (UTC), number and what happened.
[[nodiscard]] std::string eventText(const Event& event);

}  // namespace sim
