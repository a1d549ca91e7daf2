#include "commands/JsonRtosBuilderList.h"

#include "processing/JsonRetriever.h"

namespace reticled {

void JsonRtosBuilderList::buildMsgId() {
    _request[JsonRetriever::keyName(MSG_ID)] = RTOS_GET_RETICLES;
}

void JsonRtosBuilderList::buildParam() {
    _request[JsonRetriever::keyName(PARAM_GET)] = "";
}

std::string JsonRtosBuilderList::getRequest() const {
    return _requestText(_request);
}

}  // namespace reticled
