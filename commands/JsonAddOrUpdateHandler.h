#pragma once

#include <memory>
#include <string>

#include "commands/JsonHandler.h"
#include "commands/JsonRtosBuilderAddOrUpdate.h"

namespace reticled {

/// RETICLES_ADD_OR_UPDATE: adds or replaces the client's "reticles", one by one until the RTOS
/// refuses one, and returns the list as it is after all were accepted.
class JsonAddOrUpdateHandler final : public JsonHandler {
public:
    std::string handleJsReq(const std::string& request) override;

private:
    std::shared_ptr<JsonRtosBuilderAddOrUpdate> _cmdBuilder =
        std::make_shared<JsonRtosBuilderAddOrUpdate>();
};

}  // namespace reticled
