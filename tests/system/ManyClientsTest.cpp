#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/FrameClient.h"
#include "tests/system/Daemon.h"
#include "tests/system/Exchanges.h"
#include "tests/system/NumberedRtos.h"
#include "tests/system/SystemTest.h"

namespace {

constexpr int CLIENTS = 64;
constexpr int REQUESTS_PER_CLIENT = programs::HAVE_OVERHEAD ? 100 : 1000;
/// One less than the queues hold: no request and no reply is dropped.
constexpr int MAX_WAITING = 14;

constexpr auto DELETE = R"({"action":"RETICLES_DELETE","indices":[%]})";
constexpr auto ACTIVATE = R"({"action":"RETICLE_SET_ACTIVE","index":%})";
constexpr auto UPDATE = R"({"action":"RETICLES_ADD_OR_UPDATE",)"
                        R"("reticles":[{"index":%,"name":"Dot","data":"."}]})";
constexpr auto ADD = R"({"action":"RETICLES_ADD_OR_UPDATE",)"
                     R"("reticles":[{"name":"Dot %","data":"."}]})";
constexpr std::array CHANGES{ACTIVATE, UPDATE, ADD, DELETE};

std::string withNumber(const std::string& pattern, int number) {
    const std::size_t place = pattern.find('%');
    return pattern.substr(0, place) + std::to_string(number) + pattern.substr(place + 1);
}

/// The places that requests may take while they wait.
class Room {
public:
    void enter() {
        std::unique_lock lock(_mutex);
        _left.wait(lock, [this] { return _places > 0; });
        --_places;
    }

    void leave() {
        const std::lock_guard lock(_mutex);
        ++_places;
        _left.notify_one();
    }

private:
    std::mutex _mutex;
    std::condition_variable _left;
    int _places = MAX_WAITING;
};

/// One of the places, given back whatever happens.
class Place {
public:
    explicit Place(Room& room) : _room(room) { _room.enter(); }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;
    ~Place() { _room.leave(); }

private:
    Room& _room;
};

class ManyClientsTest : public SystemTest {
protected:
    ManyClientsTest() { service.waitUntilListening(); }

    void play(int client) {
        try {
            FrameClient connection;
            for (int i = 0; i < REQUESTS_PER_CLIENT; ++i) {
                const int number = client * REQUESTS_PER_CLIENT + i;
                wrong += isAnsweredRightly(connection, number) ? 0 : 1;
            }
        } catch (const std::exception& failure) {
            ADD_FAILURE() << "client " << client << ": " << failure.what();
        }
    }

    bool isAnsweredRightly(FrameClient& connection, int number) {
        constexpr std::size_t KINDS = CHANGES.size() + 1;
        const std::size_t kind = static_cast<std::size_t>(number) % KINDS;
        if (kind == CHANGES.size()) {
            return isList(exchange(connection, std::string(exchanges::GET_ALL)));
        }
        return exchange(connection, withNumber(CHANGES.at(kind), number)) ==
               NumberedRtos::replyTo(number);
    }

    std::string exchange(FrameClient& connection, const std::string& request) {
        const Place place(room);
        connection.sendFrame(request);
        return connection.readReply();
    }

    // A list request carries no number: it is answered with the list after whichever change was
    // the last.
    static bool isList(const std::string& reply) {
        constexpr std::string_view KEY = "\"index\" : ";
        const std::size_t place = reply.find(KEY);
        return place != std::string::npos &&
               reply == NumberedRtos::replyTo(std::atoi(reply.c_str() + place + KEY.size()));
    }

    Room room;
    std::atomic<int> wrong = 0;
    NumberedRtos rtos{flash};
    Daemon service;
};

TEST_F(ManyClientsTest, EveryReplyIsTheSendersOwn) {
    {
        std::vector<std::jthread> clients;
        for (int client = 0; client < CLIENTS; ++client) {
            clients.emplace_back([this, client] { play(client); });
        }
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_TRUE(service.isAlive());
}

}  // namespace
