#pragma once

#include <cstddef>
#include <istream>
#include <optional>
#include <queue>
#include <string>

namespace sim {

/// One thing that the service's log tells about a request on its way.
struct LogRecord {
    enum class Kind {
        CLIENT_REQUEST,  ///< the worker takes this text of a client
        RTOS_REQUEST,    ///< sent to the device; written for add, update and delete alone
        RTOS_ANSWER,     ///< received from the device, and JSON
        RETICLE_FILE,    ///< the path of a reticle file that is read
        REPLY,           ///< the client's reply is ready
        RESET_LINK,      ///< a connection, of the device or of a client, was reset
        FAILURE,         ///< the request has failed for this reason, and has no reply
    };

    Kind kind = Kind::FAILURE;
    std::size_t line = 0;  ///< where it begins, from 1
    std::string text;
};

/// Takes the records out of a log of reticled-foreground, with or without the prefix that
/// journalctl puts before each line.
///
/// Texts over several lines end where their brackets close. Lines of the error stream among them
/// do not belong to them; a text that breaks off, as at the end of a log, is left out.
class LogReader {
public:
    /// \param log outlives the reader
    explicit LogReader(std::istream& log) : _log(log) {}

    /// The next record; none at the end.
    /// \throws std::runtime_error when a text was cut as the log was written.
    [[nodiscard]] std::optional<LogRecord> next();

private:
    /// Lets `_line` be the next line without its prefix. \return false at the end
    [[nodiscard]] bool _readLine();
    void _takeError();
    /// Completes `record`, whose text has begun. \return false when it breaks off
    [[nodiscard]] bool _completeText(LogRecord& record);

    std::istream& _log;
    std::string _line;
    std::size_t _lineNumber = 0;
    bool _isLineUnread = false;     ///< whether `_line` is still to be taken
    std::queue<LogRecord> _errors;  ///< found within a text, to be given after it
};

}  // namespace sim
