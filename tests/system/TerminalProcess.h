#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/FileDescriptor.h"

/// A program on a terminal of its own, as a person sees it: both of its output streams and its
/// input are the terminal. Ends with this object.
class TerminalProcess {
public:
    struct Size {
        unsigned short columns;
        unsigned short rows;
    };

    static constexpr Size WIDE{200, 50};

    /// Starts `command` (program, found through PATH, and arguments).
    /// \param environment set on top of a TERM that can do everything; NO_COLOR and COLUMNS are not
    /// set by themselves.
    explicit TerminalProcess(const std::vector<std::string>& command, Size size = WIDE,
                             const std::map<std::string, std::string>& environment = {});
    TerminalProcess(const TerminalProcess&) = delete;
    TerminalProcess& operator=(const TerminalProcess&) = delete;
    ~TerminalProcess();

    /// All that was written so far, each newline as CR LF.
    [[nodiscard]] const std::string& output();

    [[nodiscard]] bool eventuallyShows(const std::string& text);

    /// Presses keys; "\x03" is Ctrl-C.
    void type(std::string_view keys) const;

    /// See ChildProcess::waitForEnd. All output is there afterwards.
    [[nodiscard]] std::optional<int> waitForEnd(std::chrono::milliseconds bound = PATIENCE);

private:
    static int _start(const std::vector<std::string>& command, Size size,
                      const std::map<std::string, std::string>& environment, pid_t& pid);

    std::string _output;
    pid_t _pid = -1;
    FileDescriptor _terminal;
    ChildProcess _child;
};
