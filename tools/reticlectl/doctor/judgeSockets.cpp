#include "tools/reticlectl/doctor/judgeSockets.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace reticlectl {

namespace {

constexpr const char* PORT_SUBJECT = "port 3451";
constexpr const char* LINK_SUBJECT = "RTOS";

/// Why no process is found behind a socket.
std::string whyUnseen(const SocketHolders& holders) {
    return holders.isComplete ? "whose is not seen from here" : "only root sees whose";
}

std::string listed(const std::vector<SocketHolders::Process>& processes) {
    std::string text;
    for (const SocketHolders::Process& process : processes) {
        text += (text.empty() ? "" : ", ") + process.name + " (process " +
                std::to_string(process.number) + ")";
    }
    return text;
}

/// Under either name, which the kernel cuts.
bool isService(const SocketHolders::Process& process) {
    return process.name.starts_with("reticled");
}

Finding judgeHolders(const SocketHolders& holders, const std::string& user) {
    const auto& processes = holders.processes;
    if (processes.empty()) {
        return {PORT_SUBJECT, Verdict::OK,
                "a socket of user " + user + " listens; " + whyUnseen(holders)};
    }
    if (!std::all_of(processes.begin(), processes.end(), &isService)) {
        return {PORT_SUBJECT, Verdict::BAD, listed(processes) + " has the port of the service",
                "end it, and start the service"};
    }
    const std::string text = listed(processes) + " listens, as user " + user;
    const bool isReplaced =
        std::any_of(processes.begin(), processes.end(),
                    [](const SocketHolders::Process& process) { return process.isReplaced; });
    return isReplaced ? Finding{PORT_SUBJECT, Verdict::LOOK,
                                text + "; its program has been replaced since it was started",
                                "restart the service"}
                      : Finding{PORT_SUBJECT, Verdict::OK, text};
}

}  // namespace

std::vector<TcpSocket> listenersOn(std::uint16_t port, const std::vector<TcpSocket>& sockets) {
    std::vector<TcpSocket> listeners;
    std::copy_if(sockets.begin(), sockets.end(), std::back_inserter(listeners),
                 [port](const TcpSocket& socket) {
                     return socket.isListener() && socket.localPort == port;
                 });
    return listeners;
}

Finding judgeServicePort(const std::vector<TcpSocket>& listeners, const SocketHolders& holders,
                         const std::string& user) {
    if (listeners.empty()) {
        return {PORT_SUBJECT, Verdict::BAD, "nobody listens",
                "start the service: systemctl start reticled.service; where it ends at once, "
                "reticled-foreground tells the reason"};
    }
    if (listeners.size() > 1) {
        const std::string who =
            holders.processes.empty() ? whyUnseen(holders) : "of " + listed(holders.processes);
        return {PORT_SUBJECT, Verdict::BAD,
                std::to_string(listeners.size()) + " sockets listen, " + who +
                    ": the kernel gives each client to one of them",
                "end all but one service"};
    }
    return judgeHolders(holders, user);
}

Finding judgeRtosPort(const std::vector<TcpSocket>& sockets) {
    const auto listeners = listenersOn(RTOS_PORT, sockets);
    const auto listener =
        std::find_if(listeners.begin(), listeners.end(),
                     [](const TcpSocket& socket) { return socket.takesLoopback(); });
    if (listener == listeners.end()) {
        return {LINK_SUBJECT, Verdict::BAD,
                listeners.empty() ? "nobody listens on port 3425"
                                  : "port 3425 is open, but not at 127.0.0.1",
                "start the RTOS side; then restart the service, as a lost link stays lost"};
    }
    if (listener->receiveQueue > 0) {
        return {LINK_SUBJECT, Verdict::LOOK,
                "listens on port 3425, but has not accepted " +
                    std::to_string(listener->receiveQueue) + " waiting connection(s)",
                "see what the RTOS side is at; until it accepts, every request waits"};
    }
    const bool isConnected =
        std::any_of(sockets.begin(), sockets.end(), [](const TcpSocket& socket) {
            return socket.isEstablished() && socket.remotePort == RTOS_PORT &&
                   socket.leadsToLoopback();
        });
    return {LINK_SUBJECT, Verdict::OK,
            isConnected
                ? "listens on port 3425, and is connected"
                : "listens on port 3425; nobody is connected, as before the first request, or once "
                  "the link was lost"};
}

}  // namespace reticlectl
