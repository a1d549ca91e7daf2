#include "net/PacketStorage.h"

namespace reticled {

PacketStorage::PacketStorage()
    : _queues{{REQUEST_QUEUE, std::make_shared<JsonQueue<Packet>>(QUEUE_CAPACITY)},
              {RESPONSE_QUEUE, std::make_shared<JsonQueue<Packet>>(QUEUE_CAPACITY)}} {}

void PacketStorage::push(int queueId, const std::shared_ptr<Packet>& packet) {
    _queues[queueId]->push(packet);
}

std::shared_ptr<Packet> PacketStorage::pop(int queueId) {
    return _queues[queueId]->waitAndPop();
}

}  // namespace reticled
