#include "commands/JsonNetBuilder.h"

#include <utility>

#include "processing/JsonRetriever.h"
#include "processing/JsonText.h"

namespace reticled {

void JsonNetBuilder::reset() {
    _isBusy = 1;
    _response.clear();
}

bool JsonNetBuilder::setResult(const std::string& answer) {
    const int code = JsonRetriever::getVal<int>(answer, RET_VAL);
    _response[JsonRetriever::keyName(RESULT)] =
        JsonRetriever::resultName(static_cast<ResultCode>(code));
    return code == OK;
}

void JsonNetBuilder::finish() {
    _isBusy = 0;
}

std::string JsonNetBuilder::getResponse() {
    // A large list must not stay in memory until the next command.
    return writeJson(std::exchange(_response, Json::Value()));
}

}  // namespace reticled
