#include "commands/JsonGetRetsHandler.h"

#include <iostream>

#include "base/Log.h"
#include "base/LoggedJson.h"

namespace reticled {

std::string JsonGetRetsHandler::handleJsReq(const std::string& /*request*/) {
    const std::string answer = _localCommunicator->send_and_get(_listRequest);
    _netBuilder->reset();
    const bool isAccepted = _netBuilder->setResult(answer);
    logLine(std::cout, "handleJsReq", ": rtos response: ", LoggedJson(answer));
    if (isAccepted) {
        _netBuilder->fillReticles(answer);
    }
    return _finishReply();
}

}  // namespace reticled
