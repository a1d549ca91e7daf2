#pragma once

#include <json/value.h>

#include <memory>
#include <string>
#include <vector>

#include "bench/common/RtosLink.h"

namespace reticled::bench {

/// The work of the service's commands and nothing else: exchanges with the RTOS, the list and
/// reticle files read, the placeholder replaced, every text written by one serializer. No
/// log lines, no checks, no layers. Knows only accepted commands. One thread at a time.
class ReticleWork {
public:
    using Writer = std::string (*)(const Json::Value&);

    /// Json::writeString, but for the settings and the writer, which are made once.
    [[nodiscard]] static std::string libraryText(const Json::Value& value);

    /// \param requestParses how often a request is parsed, 1 or more.
    /// \param write makes every text.
    explicit ReticleWork(int requestParses, Writer write = libraryText);

    /// \throws Json::Exception, std::runtime_error, std::system_error on anything unexpected.
    [[nodiscard]] std::shared_ptr<const std::string> reply(const std::string& request);

private:
    /// \return the answer's message, which accepts the command.
    Json::Value _exchange(const Json::Value& message);
    void _addReticles(const Json::Value& records);
    [[nodiscard]] Json::Value _readReticles(const std::string& listName);
    [[nodiscard]] Json::Value _readReticle(Json::Value& entry);

    int _requestParses;
    Writer _write;
    std::string _file;  ///< what was read last; its room is used for the next one
    RtosLink _rtos;
};

}  // namespace reticled::bench
