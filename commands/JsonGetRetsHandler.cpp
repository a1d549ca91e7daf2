#include "commands/JsonGetRetsHandler.h"

#include <iostream>

#include "base/Log.h"

namespace reticled {

std::string JsonGetRetsHandler::handleJsReq(const std::string& /*request*/) {
    const std::string answer = _localCommunicator->send_and_get(_listRequest);
    _netBuilder->reset();
    const bool isAccepted = _netBuilder->setResult(answer);
    logLine(std::cout, "handleJsReq", ": rtos response: ", answer);
    if (isAccepted) {
        _netBuilder->fillReticles(answer);
    }
    return _finishReply();
}

}  // namespace reticled
