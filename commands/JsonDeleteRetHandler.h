#pragma once

#include <memory>
#include <string>

#include "commands/JsonHandler.h"
#include "commands/JsonRtosBuilderDelete.h"

namespace reticled {

/// RETICLES_DELETE: deletes the reticles with the client's "indices", one by one until the RTOS
/// refuses one, and returns the list as it is after all were deleted.
class JsonDeleteRetHandler final : public JsonHandler {
public:
    std::string handleJsReq(const std::string& request) override;

private:
    std::shared_ptr<JsonRtosBuilderDelete> _cmdBuilder = std::make_shared<JsonRtosBuilderDelete>();
};

}  // namespace reticled
