#pragma once

#include <memory>
#include <thread>
#include <utility>

#include "net/NetCommunicator.h"

namespace reticled {

struct NetCommunicatorTestPeer {
    static int serverSocket(const NetCommunicator& net) { return net._serverSocket; }

    /// Requests and replies go through `storage` from now on, past the process's worker.
    static void useStorage(NetCommunicator& net, std::shared_ptr<PacketStorage> storage) {
        net._packetStorage = std::move(storage);
    }

    static void clientRoutine(NetCommunicator& net, int socket) { net._clientRoutine(socket); }
    static void startReader(NetCommunicator& net, int socket) { net._startReader(socket); }
    static void sendNextReply(NetCommunicator& net) { net._sendNextReply(); }
    static void responseThread(NetCommunicator& net) { net.responseThread(); }
    static void serverRoutine(NetCommunicator& net) { net._serverRoutine(); }
    static void stop(NetCommunicator& net) { net._isStopped = true; }
    static void resume(NetCommunicator& net) { net._isStopped = false; }

    /// The first half of start(): a response thread would never end.
    static void startServerThread(NetCommunicator& net) {
        net._serverThread = std::make_shared<std::thread>([&net] { net._serverRoutine(); });
    }
};

}  // namespace reticled
