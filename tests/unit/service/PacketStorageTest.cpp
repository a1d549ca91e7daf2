#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "net/PacketStorage.h"
#include "tests/unit/service/OutputCapture.h"

namespace reticled {
namespace {

std::shared_ptr<Packet> packet(int socket, const std::string& data) {
    return std::make_shared<Packet>(socket, data);
}

TEST(PacketStorageTest, QueuesAreApart) {
    PacketStorage storage;
    storage.push(0, packet(4, "request"));
    storage.push(1, packet(5, "reply"));
    const auto reply = storage.pop(1);
    EXPECT_EQ(reply->_socket, 5);
    EXPECT_EQ(reply->_data, "reply");
    const auto request = storage.pop(0);
    EXPECT_EQ(request->_socket, 4);
    EXPECT_EQ(request->_data, "request");
}

TEST(PacketStorageTest, SixteenthRequestIsLostWithoutALine) {
    const OutputCapture output;
    PacketStorage storage;
    for (int i = 1; i <= 16; ++i) {
        storage.push(REQUEST_QUEUE, packet(i, "request"));
    }
    // The other queue has room of its own.
    storage.push(RESPONSE_QUEUE, packet(100, "reply"));
    for (int i = 1; i <= 15; ++i) {
        EXPECT_EQ(storage.pop(REQUEST_QUEUE)->_socket, i);
    }
    storage.push(REQUEST_QUEUE, packet(17, "request"));
    EXPECT_EQ(storage.pop(REQUEST_QUEUE)->_socket, 17);
    EXPECT_EQ(storage.pop(RESPONSE_QUEUE)->_socket, 100);
    EXPECT_EQ(output.out(), "");
    EXPECT_EQ(output.err(), "");
}

}  // namespace
}  // namespace reticled
