#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "tests/support/FileDescriptor.h"
#include "tests/support/Patience.h"
#include "tests/sweep/CallGate.h"
#include "tests/sweep/Fault.h"
#include "tests/sweep/SharedPage.h"
#include "tests/system/Process.h"
#include "tests/system/ProcessInfo.h"

/// The page that the service shares with the sweep, owned.
class OwnedPage {
public:
    OwnedPage();
    OwnedPage(const OwnedPage&) = delete;
    OwnedPage& operator=(const OwnedPage&) = delete;
    ~OwnedPage();

    [[nodiscard]] SharedPage& get() const { return *_page; }
    [[nodiscard]] int descriptor() const { return _file.get(); }

private:
    FileDescriptor _file;
    SharedPage* _page;
};

inline constexpr auto DAEMON = "reticled";
inline constexpr auto FOREGROUND = "reticled-foreground";

/// The service under one fault or none. Killed with this object.
///
/// What the two programs share is counted in the one that keeps its log; of the daemon, what comes
/// before.
class SweptService {
public:
    /// \param program DAEMON or FOREGROUND.
    /// \param fault see CallGate, allocations included.
    explicit SweptService(const std::string& program, const std::optional<Fault>& fault = {});
    SweptService(const SweptService&) = delete;
    SweptService& operator=(const SweptService&) = delete;
    ~SweptService();

    /// Waits for the client port. \return false when the service ended before, or does not listen.
    [[nodiscard]] bool waitUntilListening();

    /// Whether any process of it is left.
    [[nodiscard]] bool isAlive();
    /// The exit status of its last process, 128 plus the signal's number; only when none is left.
    [[nodiscard]] int status() const { return _status; }
    [[nodiscard]] ProcessInfo info() const { return ProcessInfo(_page.get().process); }

    [[nodiscard]] std::string errors() const { return _process.standardError(); }

    /// Waits until all clients' threads have ended. \return false when they do not.
    [[nodiscard]] bool isAtRest() const;

    /// Ends it, if it still runs.
    void kill();

    /// Nothing fails, and nothing is counted, from now on.
    void stopCounting() { _page.get().isCounting = false; }
    [[nodiscard]] bool hasMetFault() const { return _page.get().isMet; }
    [[nodiscard]] const SharedPage& page() const { return _page.get(); }
    [[nodiscard]] const CallGate& gate() const { return *_gate; }

private:
    /// \param channel receives our end of it.
    [[nodiscard]] Process _start(const std::string& program, FileDescriptor& channel) const;
    void _reapOthers();

    OwnedPage _page;
    FileDescriptor _channel;
    Process _process;
    std::optional<CallGate> _gate;
    int _status = 0;
    bool _isOver = false;
};
