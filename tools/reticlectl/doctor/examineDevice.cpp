#include "tools/reticlectl/doctor/examineDevice.h"

#include <pwd.h>

#include <optional>
#include <set>
#include <string>

#include "tools/reticlectl/doctor/judgeSockets.h"
#include "tools/reticlectl/doctor/judgeStorage.h"
#include "tools/reticlectl/doctor/judgeUnits.h"

namespace reticlectl {

namespace {

SocketHolders holdersOf(const std::vector<TcpSocket>& listeners) {
    std::set<unsigned long> inodes;
    for (const TcpSocket& socket : listeners) {
        inodes.insert(socket.inode);
    }
    return inodes.empty() ? SocketHolders() : SocketHolders::find(inodes);
}

/// Whom the service runs as, or would by its unit.
std::optional<ServiceUser> serviceUser(const std::vector<TcpSocket>& listeners) {
    if (!listeners.empty()) {
        return ServiceUser::of(listeners.front().uid);
    }
    const passwd* const entry = ::getpwnam("reticled");
    return entry != nullptr ? std::optional(ServiceUser::of(entry->pw_uid)) : std::nullopt;
}

Finding judgeVersions(const std::optional<ProgramRun>& package) {
    const std::string own = "reticlectl " RETICLED_VERSION;
    if (!package || !package->hasSucceeded) {
        return {"versions", Verdict::OK, own + "; the service is of no Debian package"};
    }
    const std::string text = own + ", package reticled " + package->output;
    return package->output == RETICLED_VERSION
               ? Finding{"versions", Verdict::OK, text}
               : Finding{"versions", Verdict::LOOK, text, "install what belongs together"};
}

}  // namespace

std::vector<Finding> examineDevice() {
    const std::vector<TcpSocket> sockets = readTcpTables();
    const std::vector<TcpSocket> listeners = listenersOn(SERVICE_PORT, sockets);
    const std::optional<ServiceUser> user = serviceUser(listeners);
    const StorageState storage = StorageState::of(STORAGE_DIRECTORY);
    return {judgeServicePort(listeners, holdersOf(listeners), user ? user->name : ""),
            judgeRtosPort(sockets),
            judgeStorage(storage, user),
            judgeDataFiles(storage),
            judgeService(runProgram(showUnit("reticled.service"))),
            judgeHealthCheck(runProgram(showUnit("reticled-health.timer")),
                             runProgram(showUnit("reticled-health.service"))),
            judgeJournal(runProgram(readJournal())),
            judgeVersions(runProgram({"dpkg-query", "-W", "-f", "${Version}", "reticled"}))};
}

}  // namespace reticlectl
