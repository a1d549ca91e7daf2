#pragma once

#include <json/value.h>

#include <string>

#include "simulator/device/ReticleList.h"
#include "simulator/events/Event.h"

namespace sim {

/// `event` as a JSON object in UTF-8 on one line, without a newline; simulator/README.md has the
/// members. Its texts may be cut or escaped: see shownText.
[[nodiscard]] std::string eventJson(const Event& event);

/// One reticle, or all, as events show them.
[[nodiscard]] Json::Value reticleJson(const Reticle& reticle);
[[nodiscard]] Json::Value reticlesJson(const ReticleList& list);

}  // namespace sim
