#include "commands/JsonSetActiveRetHandler.h"

namespace reticled {

std::string JsonSetActiveRetHandler::handleJsReq(const std::string& request) {
    _build(*_cmdBuilder, request);
    const std::string answer = _localCommunicator->send_and_get(_cmdBuilder->getRequest());
    _netBuilder->reset();
    if (_netBuilder->setResult(answer)) {
        _refreshList();
    }
    return _finishReply();
}

}  // namespace reticled
