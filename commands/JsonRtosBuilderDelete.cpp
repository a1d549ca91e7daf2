#include "commands/JsonRtosBuilderDelete.h"

#include <iostream>
#include <utility>

#include "base/Log.h"
#include "base/LoggedJson.h"
#include "processing/JsonRetriever.h"

namespace reticled {

void JsonRtosBuilderDelete::reset() {
    JsonRtosBuilder::reset();
    _requests.clear();
}

void JsonRtosBuilderDelete::build(const std::string& request) {
    // Intended: no separator, log readers look for "buildmsg: ".
    logLine(std::cout, "build", "msg: ", LoggedJson(request));
    const std::vector<int> indices = JsonRetriever::getIntVector(request, INDICES);
    if (indices.empty()) {
        logLine(std::cout, "build", "indices is empty ");
        return;
    }
    std::vector<Json::Value> messages;
    for (const int index : indices) {
        Json::Value message;
        message[JsonRetriever::keyName(MSG_ID)] = RTOS_DELETE_RETICLE;
        message[JsonRetriever::keyName(PARAM)] = index;
        messages.push_back(std::move(message));
    }
    // Only now: half the messages of a command that fails would stay until the next one.
    _requests = std::move(messages);
}

std::vector<std::string> JsonRtosBuilderDelete::getRequests() {
    return _requestTexts(std::move(_requests));
}

}  // namespace reticled
