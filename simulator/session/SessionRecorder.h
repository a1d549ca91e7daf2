#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/events/Event.h"
#include "simulator/session/ChangedFiles.h"
#include "simulator/session/Session.h"
#include "simulator/session/SessionWriter.h"

namespace sim {

/// Writes exchanges down as a session, one after the other as they happen. One thread.
class SessionRecorder {
public:
    /// \param root the storage that device and service share
    /// \param session where they are written; outlives this object, and its state tells whether
    ///        writing has succeeded
    SessionRecorder(std::filesystem::path root, std::ostream& session);

    /// Takes what it needs from `event`. What the storage or `session` fails is missing in the
    /// session. Never throws.
    void record(const Event& event);

private:
    void _record(const Answered& answered);
    [[nodiscard]] std::vector<SessionFile> _dataFor(const std::string& request) const;
    [[nodiscard]] std::vector<SessionFile> _filesShown(const std::string& answer) const;

    std::filesystem::path _root;
    SessionWriter _session;
    ChangedFiles _changedFiles;
    std::vector<SessionFile> _newData;  ///< of the exchange that has no answer yet
};

}  // namespace sim
