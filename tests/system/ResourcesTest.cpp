#include <gtest/gtest.h>

#include <list>
#include <string>

#include "tests/support/FrameClient.h"
#include "tests/system/DaemonTest.h"
#include "tests/system/Exchanges.h"

namespace {

using exchanges::expectServed;
using exchanges::FULL;
using exchanges::FULL_REPLY;
using exchanges::LIST_REQUEST;

constexpr std::size_t BODY_BYTES = 4194303;
constexpr std::size_t CLIENTS_WITH_BODIES = 20;
constexpr std::size_t GIVEN_BACK_WITHIN_BYTES = 4000000;
constexpr std::size_t IDLE_CLIENTS = 200;
constexpr std::size_t BYTES_PER_IDLE_CLIENT = 20000;

/// Descriptors, threads and resident memory before clients come, while they stay, after they left.
class ResourcesTest : public DaemonTest {
protected:
    // One exchange first: the link to the RTOS is up and everything made on first use is there.
    ResourcesTest() {
        {
            FrameClient first;
            expectServed(first, rtos);
            threadsAtRest = service.info().threadCount() - 1;
        }
        expectRest();
        residentAtRest = service.info().residentBytes();
    }

    // Waits for each reader thread: connections that wait to be accepted are few, and the kernel
    // makes a client that finds no place among them try again a second later.
    void connect(std::list<FrameClient>& clients, std::size_t count) const {
        while (clients.size() < count) {
            clients.emplace_back();
            EXPECT_TRUE(eventually(
                [&] { return service.info().threadCount() == threadsAtRest + clients.size(); }));
        }
    }

    void expectRest() const {
        EXPECT_TRUE(eventually([this] {
            return service.info().descriptors().size() == DESCRIPTORS_AT_REST &&
                   service.info().threadCount() == threadsAtRest;
        })) << service.info().descriptors().size()
            << " descriptors, " << service.info().threadCount() << " threads";
    }

    void expectMemoryGivenBack() const {
        if (programs::HAVE_OVERHEAD) {
            return;
        }
        EXPECT_TRUE(eventually([this] {
            return service.info().residentBytes() < residentAtRest + GIVEN_BACK_WITHIN_BYTES;
        })) << residentAtRest
            << " bytes at rest before, " << service.info().residentBytes() << " after";
    }

    std::size_t threadsAtRest = 0;
    std::size_t residentAtRest = 0;
};

TEST_F(ResourcesTest, IdleClientsCostLittleAndNothingWhenTheyAreGone) {
    {
        std::list<FrameClient> clients;
        connect(clients, IDLE_CLIENTS);
        if (!programs::HAVE_OVERHEAD) {
            EXPECT_LT(service.info().residentBytes(),
                      residentAtRest + IDLE_CLIENTS * BYTES_PER_IDLE_CLIENT);
        }
    }
    expectRest();
}

TEST_F(ResourcesTest, AnnouncedBodyCostsNothingBeforeItsBytesArrive) {
    std::list<FrameClient> clients;
    connect(clients, IDLE_CLIENTS);
    for (FrameClient& client : clients) {
        client.sendBytes(FrameClient::header(BODY_BYTES));
    }
    // A later client's request goes the same way; when it is served, the headers have been read.
    FrameClient later;
    expectServed(later, rtos);
    if (!programs::HAVE_OVERHEAD) {
        EXPECT_LT(service.info().residentBytes(),
                  residentAtRest + IDLE_CLIENTS * BYTES_PER_IDLE_CLIENT);
    }
}

TEST_F(ResourcesTest, LargeBodiesOfManyClientsLeaveNoMemoryBehind) {
    std::string body = R"({"action":"RETICLES_GET_ALL","x":")";
    body.append(BODY_BYTES - body.size() - 2, 'x').append("\"}");
    {
        std::list<FrameClient> clients;
        connect(clients, CLIENTS_WITH_BODIES);
        for (FrameClient& client : clients) {
            client.sendFrame(body);
            EXPECT_EQ(rtos.exchange(FULL), LIST_REQUEST);
            EXPECT_EQ(client.readReply(), FULL_REPLY);
        }
    }
    expectRest();
    expectMemoryGivenBack();
}

TEST_F(ResourcesTest, LargeBodiesAtOnceLeaveNoMemoryBehind) {
    std::string body = R"(["not json)";
    body.append(BODY_BYTES - body.size(), 'x');
    {
        std::list<FrameClient> clients;
        connect(clients, CLIENTS_WITH_BODIES);
        for (FrameClient& client : clients) {
            client.sendFrame(body);
        }
        for (FrameClient& client : clients) {
            client.connection().closeWriting();
            EXPECT_TRUE(client.connection().seesEnd());
        }
    }
    expectRest();
    expectMemoryGivenBack();
}

// Getting pages from the kernel costs more than the work on them.
TEST_F(ResourcesTest, CommandsUseTheMemoryOfThoseBeforeThem) {
    constexpr std::size_t RETICLE_BYTES = 1000000;
    constexpr int LISTS = 20;
    constexpr std::size_t FEW_PAGES = 100;
    flash.write("list.json", exchanges::ONE_DOT_LIST);
    flash.write("reticle/dot.svg", std::string(RETICLE_BYTES, 'x'));
    FrameClient client;
    std::size_t before = 0;
    for (int i = 0; i < 2 * LISTS; ++i) {
        before = i == LISTS ? service.info().pagesTaken() : before;
        client.sendFrame(exchanges::GET_ALL);
        EXPECT_EQ(rtos.exchange(exchanges::LIST_ANSWER), LIST_REQUEST);
        EXPECT_GT(client.readReply().size(), RETICLE_BYTES);
    }
    if (!programs::HAVE_OVERHEAD) {
        EXPECT_LT(service.info().pagesTaken() - before, LISTS * FEW_PAGES);
    }
}

TEST_F(ResourcesTest, ClientsThatComeAndGoLeaveNothingBehind) {
    constexpr int VISITS = 200;
    for (int i = 0; i < VISITS; ++i) {
        std::list<FrameClient> clients;
        connect(clients, 1);
        if (i % 2 == 0) {
            clients.front().connection().reset();
        }
        clients.clear();
        expectRest();
    }
    expectMemoryGivenBack();
}

}  // namespace
