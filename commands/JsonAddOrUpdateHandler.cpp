#include "commands/JsonAddOrUpdateHandler.h"

namespace reticled {

std::string JsonAddOrUpdateHandler::handleJsReq(const std::string& request) {
    _build(*_cmdBuilder, request);
    const bool isAccepted = _exchangeAll(_cmdBuilder->getRequests());
    // Refused or not, the RTOS needs the files no longer. After an exception they stay for the next
    // one.
    _cmdBuilder->removeDataFiles();
    if (isAccepted) {
        _refreshList();
    }
    return _finishReply();
}

}  // namespace reticled
