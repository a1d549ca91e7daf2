#pragma once

#include <string>

#include "commands/JsonNetBuilder.h"

namespace reticled {

struct JsonNetBuilderTestPeer {
    static std::string getReticlesList(const std::string& answer) {
        return JsonNetBuilder::_getReticlesList(answer);
    }
    static std::string getReticleData(const std::string& fileName, const std::string& userColor) {
        return JsonNetBuilder::_getReticleData(fileName, userColor);
    }
    static std::string applyUserColor(const std::string& text, const std::string& userColor) {
        return JsonNetBuilder::_applyUserColor(text, userColor);
    }
};

}  // namespace reticled
