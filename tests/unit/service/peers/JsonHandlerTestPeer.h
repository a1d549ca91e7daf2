#pragma once

#include <memory>

#include "commands/JsonHandler.h"

namespace reticled {

/// Reaches the protected members of any handler, as a derived class may; no friend is needed.
class JsonHandlerTestPeer : public JsonHandler {
public:
    static std::shared_ptr<LocalCommunicator>& link(JsonHandler& handler) {
        return handler.*(&JsonHandlerTestPeer::_localCommunicator);
    }

protected:
    ~JsonHandlerTestPeer() = default;
};

}  // namespace reticled
