#include "commands/JsonDeleteRetHandler.h"

namespace reticled {

std::string JsonDeleteRetHandler::handleJsReq(const std::string& request) {
    _cmdBuilder->reset();
    _cmdBuilder->build(request);
    _cmdBuilder->finish();
    if (_exchangeAll(_cmdBuilder->getRequests())) {
        _refreshList();
    }
    return _finishReply();
}

}  // namespace reticled
