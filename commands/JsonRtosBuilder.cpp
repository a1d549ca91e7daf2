#include "commands/JsonRtosBuilder.h"

#include <utility>

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

std::vector<std::string> JsonRtosBuilder::_requestTexts(std::vector<Json::Value>&& messages) {
    const std::vector<Json::Value> taken = std::move(messages);
    std::vector<std::string> texts;
    texts.reserve(taken.size());
    for (const Json::Value& message : taken) {
        texts.push_back(_requestText(message));
    }
    return texts;
}

}  // namespace reticled
