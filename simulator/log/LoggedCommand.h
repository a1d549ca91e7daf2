#pragma once

#include <json/value.h>

#include <cstddef>
#include <optional>
#include <queue>
#include <string>
#include <vector>

#include "simulator/log/LogReader.h"
#include "simulator/session/Session.h"

namespace sim {

/// One client request in the service's log, with the exchanges that it led to.
///
/// The log has only some of the requests that went to the device; the others follow from the
/// client's text.
class LoggedCommand {
public:
    /// How it ended, as far as the log tells.
    enum class Outcome {
        UNKNOWN,      ///< the log does not say
        REPLY,        ///< with a reply
        FAILURE,      ///< without one
        UNREACHABLE,  ///< without one, since there was no link to the device
    };

    /// \param record of kind CLIENT_REQUEST
    explicit LoggedCommand(const LogRecord& record);

    /// Takes the next record, of any kind but CLIENT_REQUEST.
    void take(const LogRecord& record);

    [[nodiscard]] std::size_t line() const { return _line; }
    [[nodiscard]] const std::string& text() const { return _text; }
    [[nodiscard]] Outcome outcome() const { return _outcome; }
    [[nodiscard]] const std::vector<Exchange>& exchanges() const { return _exchanges; }

private:
    void _takeAnswer(Delivery answer);
    void _takeReply(const std::string& reply);
    void _takeFailure(const std::string& reason);
    [[nodiscard]] std::string _request();
    [[nodiscard]] std::string _takeNewData();

    std::size_t _line;
    std::string _text;
    Json::Value _command;  ///< `_text`; null where it is no object
    Outcome _outcome = Outcome::UNKNOWN;
    std::vector<Exchange> _exchanges;
    std::optional<std::string> _loggedRequest;  ///< the one that waits for its answer
    std::queue<std::string> _newData;           ///< of the client's reticles not sent yet
    std::vector<std::string> _reticlePaths;
    bool _isLinkReset = false;
};

}  // namespace sim
