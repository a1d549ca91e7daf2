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

    [[nodiscard]] std::vector<std::string> getRequests() const;

private:
    std::vector<Json::Value> _requests;
};

}  // namespace reticled
