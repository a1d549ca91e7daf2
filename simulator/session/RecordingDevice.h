#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "simulator/link/Delivery.h"
#include "simulator/session/ChangedFiles.h"
#include "simulator/session/Session.h"
#include "simulator/session/SessionWriter.h"

namespace sim {

/// A device whose exchanges are written down as a session, one after the other as they happen.
/// One thread.
class RecordingDevice {
public:
    /// \param device carries out the exchanges
    /// \param root the storage that device and service share
    /// \param session where they are written; outlives this object, and its state tells whether
    ///        writing has succeeded
    RecordingDevice(ExchangeFunction device, std::filesystem::path root, std::ostream& session);

    /// One exchange of the device. What the storage or `session` fails is missing in the session,
    /// not in the exchange. Never throws.
    [[nodiscard]] Delivery exchange(const std::string& request);

private:
    [[nodiscard]] std::vector<SessionFile> _newData(const std::string& request) const;
    [[nodiscard]] std::vector<SessionFile> _filesShown(const std::string& answer) const;

    ExchangeFunction _device;
    std::filesystem::path _root;
    SessionWriter _session;
    ChangedFiles _changedFiles;
};

}  // namespace sim
