#pragma once

#include <istream>
#include <optional>
#include <string>
#include <vector>

#include "simulator/log/LoggedCommand.h"
#include "simulator/session/ChangedFiles.h"
#include "simulator/session/Session.h"

namespace sim {

/// Puts the session together that a log of reticled-foreground tells of.
///
/// It begins with the first client request of the log, and has no request whose end is not in the
/// log: replies, and with them the files, could not be told.
class ServiceLog {
public:
    /// Reads `log` to its end.
    /// \throws std::runtime_error when a text was cut as the log was written.
    explicit ServiceLog(std::istream& log);

    [[nodiscard]] const Session& session() const { return _session; }

    /// What was left out and why, a line each, for people.
    [[nodiscard]] const std::vector<std::string>& remarks() const { return _remarks; }

private:
    void _add(const LoggedCommand& command);

    Session _session;
    ChangedFiles _changedFiles;
    std::vector<std::string> _remarks;
};

}  // namespace sim
