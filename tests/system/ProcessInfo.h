#pragma once

#include <sys/resource.h>
#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <map>
#include <string>

/// What the service has open at rest: the standard streams, the socket that it listens on, the link to the RTOS. Each
/// client adds one.
inline constexpr std::size_t DESCRIPTORS_AT_REST = 5;

/// What the kernel tells about a running process.
class ProcessInfo {
public:
    explicit ProcessInfo(pid_t pid) : _pid(pid) {}

    /// Number of each open descriptor and what it refers to ("/dev/null", "socket:[123]").
    [[nodiscard]] std::map<int, std::string> descriptors() const;
    [[nodiscard]] std::size_t threadCount() const;
    [[nodiscard]] std::size_t residentBytes() const;
    /// How often, all threads, the kernel had to find a page for it.
    [[nodiscard]] std::size_t pagesTaken() const;
    /// User and system time used so far, all threads; counted in steps of 10 ms.
    [[nodiscard]] std::chrono::milliseconds processorTime() const;
    [[nodiscard]] std::string workingDirectory() const;
    /// One field of /proc/PID/status, such as "Umask" or "VmRSS", without the blanks around it.
    [[nodiscard]] std::string status(const std::string& field) const;
    /// The controlling terminal's device number; 0 for none.
    [[nodiscard]] int terminal() const;

    /// Whether every thread waits in a system call for something to happen.
    [[nodiscard]] bool isAsleep() const { return _allThreadsAre('S'); }
    /// Whether a stop signal has reached every thread.
    [[nodiscard]] bool isStopped() const { return _allThreadsAre('T'); }

    /// Sets the soft limit of a resource (RLIMIT_NOFILE, ...) of the running process and leaves the
    /// hard one. \return the soft limit that was in force.
    rlim_t setSoftLimit(int resource, rlim_t limit) const;

private:
    [[nodiscard]] bool _allThreadsAre(char state) const;
    [[nodiscard]] std::string _path(const std::string& name) const;

    pid_t _pid;
};
