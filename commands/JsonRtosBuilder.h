#pragma once

#include <json/value.h>

#include <atomic>
#include <string>
#include <vector>

namespace reticled {

/// Kinds of RTOS messages: the RTOS's own numbers.
inline constexpr int RTOS_GET_RETICLES = 76;
inline constexpr int RTOS_SET_ACTIVE_RETICLE = 77;
inline constexpr int RTOS_ADD_RETICLE = 78;
inline constexpr int RTOS_UPDATE_RETICLE = 79;
inline constexpr int RTOS_DELETE_RETICLE = 80;

/// Base of the builders that turn a client's request into RTOS requests. Worker thread only.
///
/// Calls for one command, in order: reset, the concrete builder's building calls, finish, then its
/// getRequest or getRequests. Every request text is an array of one message.
class JsonRtosBuilder {
public:
    JsonRtosBuilder(const JsonRtosBuilder&) = delete;
    JsonRtosBuilder& operator=(const JsonRtosBuilder&) = delete;
    virtual ~JsonRtosBuilder() = default;

    /// Forgets the last command's message.
    void reset();

    /// Ends the building.
    void finish();

protected:
    JsonRtosBuilder() = default;

    /// The request text for `message`.
    [[nodiscard]] static std::string _requestText(const Json::Value& message);

    /// One request text per message, in order. Takes the messages, so that they are not kept.
    [[nodiscard]] static std::vector<std::string> _requestTexts(
        std::vector<Json::Value>&& messages);

    Json::Value _request;  ///< the message of a command that has one

private:
    std::atomic<bool> _isBusy{false};  ///< true from reset to finish, written only
};

}  // namespace reticled
