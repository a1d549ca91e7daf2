#include "commands/JsonRtosBuilderSetActive.h"

#include "processing/JsonRetriever.h"

namespace reticled {

void JsonRtosBuilderSetActive::build(const std::string& request) {
    const int index = JsonRetriever::getIntVal(request, INDEX);
    _request[JsonRetriever::keyName(MSG_ID)] = RTOS_SET_ACTIVE_RETICLE;
    _request[JsonRetriever::keyName(PARAM)] = index;
}

std::string JsonRtosBuilderSetActive::getRequest() const {
    return _requestText(_request);
}

}  // namespace reticled
