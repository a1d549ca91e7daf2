#pragma once

#include <string>

#include "commands/JsonRtosBuilder.h"

namespace reticled {

/// Builds the request that makes one reticle the active one.
class JsonRtosBuilderSetActive final : public JsonRtosBuilder {
public:
    /// \param request the client's request; a missing "index" counts as 0.
    /// \throws std::runtime_error on an empty text, Json::Exception on an "index" that is no
    /// integer.
    void build(const std::string& request);

    [[nodiscard]] std::string getRequest() const;
};

}  // namespace reticled
