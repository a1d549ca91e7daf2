#pragma once

#include <memory>
#include <string>

#include "commands/JsonHandler.h"
#include "commands/JsonRtosBuilderSetActive.h"

namespace reticled {

/// RETICLE_SET_ACTIVE: makes the reticle with the client's "index" the active one and returns the
/// list as it is afterwards.
class JsonSetActiveRetHandler final : public JsonHandler {
public:
    std::string handleJsReq(const std::string& request) override;

private:
    std::shared_ptr<JsonRtosBuilderSetActive> _cmdBuilder =
        std::make_shared<JsonRtosBuilderSetActive>();
};

}  // namespace reticled
