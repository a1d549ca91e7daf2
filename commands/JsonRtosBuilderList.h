#pragma once

#include <string>

#include "commands/JsonRtosBuilder.h"

namespace reticled {

/// Builds the request for the RTOS's reticle list: always the same text.
class JsonRtosBuilderList final : public JsonRtosBuilder {
public:
    /// First building call.
    void buildMsgId();

    /// Second building call.
    void buildParam();

    [[nodiscard]] std::string getRequest() const;
};

}  // namespace reticled
