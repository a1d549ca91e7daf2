#include "commands/JsonRtosBuilder.h"

#include "processing/JsonText.h"

namespace reticled {

void JsonRtosBuilder::reset() {
    _isBusy = true;
    _request.clear();
}

void JsonRtosBuilder::finish() {
    _isBusy = false;
}

std::string JsonRtosBuilder::_requestText(const Json::Value& message) {
    Json::Value request;
    request.append(message);
    return writeJson(request);
}

std::vector<std::string> JsonRtosBuilder::_requestTexts(const std::vector<Json::Value>& messages) {
    std::vector<std::string> texts;
    texts.reserve(messages.size());
    for (const Json::Value& message : messages) {
        texts.push_back(_requestText(message));
    }
    return texts;
}

}  // namespace reticled
