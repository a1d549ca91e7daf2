#pragma once

#include <linux/seccomp.h>

#include <atomic>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>

#include "tests/support/FileDescriptor.h"
#include "tests/sweep/Calls.h"
#include "tests/sweep/Fault.h"
#include "tests/sweep/SharedPage.h"

/// Stands between the service and the system: counts its calls and lets one of them fail.
class CallGate {
public:
    /// Number of calls so far, by thread and by kind.
    using Counts = std::map<std::pair<int, const FailingCall*>, long>;

    /// \param channel on which the service's interposer hands over the calls.
    /// \param page outlives this object.
    /// \param fault what is to fail; nothing for none.
    /// \param lastCall ends the counting; negative for none.
    CallGate(FileDescriptor channel, SharedPage& page, std::optional<Fault> fault, long lastCall);
    CallGate(const CallGate&) = delete;
    CallGate& operator=(const CallGate&) = delete;
    /// Calls of a service that still runs fail from now on.
    ~CallGate();

    /// How many calls have been let through or answered; negative while one waits for that.
    [[nodiscard]] long settledCalls() const;

    // For when nothing is counted any more:
    [[nodiscard]] const Counts& counts() const { return _counts; }
    [[nodiscard]] const std::set<long>& unknownCalls() const { return _unknownCalls; }
    /// What the call that failed was about: a path, "socket", "log", or nothing.
    [[nodiscard]] const std::string& target() const { return _target; }

private:
    void _serve();
    [[nodiscard]] bool _waitFor(const FileDescriptor& source) const;
    void _takeListener();
    void _handleNext();
    /// Counts the call. \return whether it is the one that fails.
    [[nodiscard]] bool _isToFail(const seccomp_notif& asked);
    void _fail(const seccomp_notif& asked);
    void _cutShort(const seccomp_notif& asked);
    void _giveBack(const seccomp_notif& asked) const;
    void _answer(const seccomp_notif& asked, long result) const;
    void _letThrough(const seccomp_notif& asked) const;
    [[nodiscard]] int _threadOf(const seccomp_notif& asked) const;

    FileDescriptor _channel;
    SharedPage& _page;
    std::optional<Fault> _fault;
    long _lastCall;
    FileDescriptor _listener;
    FileDescriptor _stop;
    Counts _counts;
    std::set<long> _unknownCalls;
    std::string _target;
    std::atomic<long> _received{0};
    std::atomic<long> _settled{0};
    std::thread _shortCall;  ///< waits, as the service's own thread would
    std::thread _thread;
};
