#pragma once

#include <string>

#include "commands/JsonHandler.h"

namespace reticled {

/// RETICLES_GET_ALL: returns the RTOS's reticle list. Reads nothing of the request.
class JsonGetRetsHandler final : public JsonHandler {
public:
    std::string handleJsReq(const std::string& request) override;
};

}  // namespace reticled
