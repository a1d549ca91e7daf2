#pragma once

#include "commands/JsonRtosBuilder.h"

namespace reticled {

struct JsonRtosBuilderTestPeer {
    static bool isBusy(const JsonRtosBuilder& builder) { return builder._isBusy; }
};

}  // namespace reticled
