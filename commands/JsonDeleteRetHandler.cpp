#include "commands/JsonDeleteRetHandler.h"

namespace reticled {

std::string JsonDeleteRetHandler::handleJsReq(const std::string& request) {
    _build(*_cmdBuilder, request);
    if (_exchangeAll(_cmdBuilder->getRequests())) {
        _refreshList();
    }
    return _finishReply();
}

}  // namespace reticled
