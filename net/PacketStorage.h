#pragma once

#include <map>
#include <memory>

#include "base/SingleInstance.h"
#include "net/JsonQueue.h"
#include "net/Packet.h"

namespace reticled {

/// From the client connections' reader threads to the worker.
inline constexpr int REQUEST_QUEUE = 0;
/// From the worker to the response thread.
inline constexpr int RESPONSE_QUEUE = 1;
/// Packets that wait in each queue at most; further ones are dropped.
inline constexpr int QUEUE_CAPACITY = 15;

/// Where the threads meet: one queue for requests and one for replies. The socket inside a packet
/// is the only link between a reply and its client.
class PacketStorage : public SingleInstance<PacketStorage> {
public:
    PacketStorage();

    /// Queues `packet`, or drops it silently when that queue is full. Any thread.
    /// \param queueId REQUEST_QUEUE or RESPONSE_QUEUE, nothing else.
    void push(int queueId, const std::shared_ptr<Packet>& packet);

    /// Takes the oldest packet of a queue; blocks without time-out until there is one. Any thread.
    /// \param queueId REQUEST_QUEUE or RESPONSE_QUEUE, nothing else.
    [[nodiscard]] std::shared_ptr<Packet> pop(int queueId);

private:
    // Filled by the constructor and only read afterwards, hence without a lock.
    std::map<int, std::shared_ptr<JsonQueue<Packet>>> _queues;
};

}  // namespace reticled
