#pragma once

#include <json/value.h>

#include <memory>
#include <string>
#include <vector>

#include "bench/common/RtosLink.h"

namespace reticled::bench {

/// The work of the service's commands and nothing else: exchanges with the RTOS, the list and
/// reticle files read, the placeholder replaced, every text written by the required serializer. No
/// log lines, no checks, no layers. Knows only accepted commands. One thread at a time.
class ReticleWork {
public:
    /// \param requestParses how often a request is parsed, 1 or more.
    explicit ReticleWork(int requestParses);

    /// \throws Json::Exception, std::runtime_error, std::system_error on anything unexpected.
    [[nodiscard]] std::shared_ptr<const std::string> reply(const std::string& request);

private:
    /// \return the answer's message, which accepts the command.
    Json::Value _exchange(const Json::Value& message);
    void _addReticles(const Json::Value& records);

    int _requestParses;
    RtosLink _rtos;
};

}  // namespace reticled::bench
