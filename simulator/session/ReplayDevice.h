#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include "simulator/base/FileChange.h"
#include "simulator/link/Delivery.h"
#include "simulator/session/Session.h"

namespace sim {

/// Plays the device's side of a session, strictly in its order, until a request differs.
///
/// It understands nothing of what it plays: a request that is, byte for byte, the next one of the
/// session has the session's files written and the session's answer sent. One thread.
class ReplayDevice {
public:
    /// \param root where files are written, and new data of the service is looked at
    /// \throws std::filesystem::filesystem_error when the directories of the session's files
    ///         cannot be made.
    ReplayDevice(Session session, std::filesystem::path root);

    /// One exchange; the connection's end, without an answer, once something has differed. A file
    /// that cannot be written counts as a difference. Never throws.
    [[nodiscard]] Delivery exchange(const std::string& request);

    /// Tells `observer` of each file that it writes from now on.
    void observe(FileObserver observer) { _observer = std::move(observer); }

    /// The first thing that differed, what was expected and what came instead, in lines for people;
    /// empty while nothing has.
    [[nodiscard]] const std::string& difference() const { return _difference; }

    [[nodiscard]] std::size_t played() const { return _played; }
    [[nodiscard]] std::size_t size() const { return _session.exchanges.size(); }
    [[nodiscard]] bool isComplete() const { return _played == size(); }

    /// Which exchange comes next and what it expects, in lines for people. Not when complete.
    [[nodiscard]] std::string expectation() const;

private:
    void _compare(const std::string& request);
    void _compareNewData(const SessionFile& expected);
    void _differ(std::string_view what, std::string_view expected, std::string_view got);
    [[nodiscard]] std::string _place() const;

    Session _session;
    std::filesystem::path _root;
    std::size_t _played = 0;
    std::string _difference;
    FileObserver _observer = [](const FileChange& /*change*/) {};
};

}  // namespace sim
