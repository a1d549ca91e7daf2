#pragma once

#include <string>
#include <vector>

#include "commands/JsonRtosBuilder.h"

namespace reticled {

/// Builds one RTOS request per reticle to delete.
class JsonRtosBuilderDelete final : public JsonRtosBuilder {
public:
    void reset();

    /// Takes the "indices" of the client's request in their order, repetitions included. Entries
    /// that are no integers are left out; without any, no message is built.
    void build(const std::string& request);

    /// Gives up the messages, which may be many, so call it once.
    [[nodiscard]] std::vector<std::string> getRequests();

private:
    std::vector<Json::Value> _requests;
};

}  // namespace reticled
