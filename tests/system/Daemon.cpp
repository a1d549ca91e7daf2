#include "tests/system/Daemon.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "tests/support/Patience.h"
#include "tests/support/Ports.h"

namespace {

const std::string DAEMON_NAME = "reticled";

std::string nameOf(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/comm");
    std::string name;
    std::getline(file, name);
    return name;
}

std::vector<pid_t> runningProcesses() {
    std::vector<pid_t> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        pid_t pid = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
        if (error == std::errc{} && end == name.data() + name.size()) {
            found.push_back(pid);
        }
    }
    return found;
}

// Of the three processes named like the daemon only the daemon itself lives in a session that
// another process, not our own, has opened. One that has ended already still counts: we have not
// reaped it yet.
bool isDaemon(pid_t pid) {
    const pid_t session = getsid(pid);
    return nameOf(pid) == DAEMON_NAME && session > 0 && session != pid && session != getsid(0);
}

pid_t findDaemon(Process& command) {
    const std::optional<int> status = command.waitForEnd();
    if (status != 0) {
        throw std::runtime_error("the start command failed: " + command.standardError());
    }
    pid_t found = 0;
    const bool hasAppeared = eventually([&found] {
        const std::vector<pid_t> processes = runningProcesses();
        const auto daemon = std::find_if(processes.begin(), processes.end(), isDaemon);
        found = daemon == processes.end() ? 0 : *daemon;
        return found > 0;
    });
    if (!hasAppeared) {
        throw std::runtime_error("no daemon appeared: " + command.standardError());
    }
    return found;
}

}  // namespace

Daemon::Daemon(const std::vector<std::string>& command)
    : _command(command), _daemon(findDaemon(_command)), _sessionLeader(getsid(_daemon.pid())) {}

void Daemon::waitUntilListening() {
    if (!eventually([this] { return isListening(CLIENT_PORT) || !isAlive(); }) || !isAlive()) {
        throw std::runtime_error("the daemon does not listen");
    }
}
