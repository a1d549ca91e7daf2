#pragma once

#include <string>
#include <vector>

#include "commands/JsonRtosBuilderAddOrUpdate.h"

namespace reticled {

struct JsonRtosBuilderAddOrUpdateTestPeer {
    static std::string saveReticleData(JsonRtosBuilderAddOrUpdate& builder,
                                       const std::string& data) {
        return builder._saveReticleData(data);
    }
    static const std::vector<std::string>& dataFiles(const JsonRtosBuilderAddOrUpdate& builder) {
        return builder._dataFiles;
    }
};

}  // namespace reticled
