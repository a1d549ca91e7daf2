#include <gtest/gtest.h>
#include <poll.h>
#include <sys/resource.h>

#include <chrono>
#include <list>
#include <random>
#include <string>
#include <thread>

#include "tests/support/FrameClient.h"
#include "tests/support/Ports.h"
#include "tests/support/ScriptedRtos.h"
#include "tests/support/Sockets.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundService.h"
#include "tests/system/OrdinaryUser.h"
#include "tests/system/SystemTest.h"

namespace {

using exchanges::expectServed;

constexpr std::size_t CROWD = 100;
constexpr rlim_t DESCRIPTOR_LIMIT = 64;
constexpr unsigned THREAD_LIMIT = 40;

// Another one in each run: the limit counts all processes of a user.
OrdinaryUser anyUser() {
    constexpr unsigned FIRST = 100000;
    constexpr unsigned COUNT = 1000000;
    return OrdinaryUser(FIRST + std::random_device()() % COUNT);
}

/// More clients than the service has descriptors or threads for.
class CrowdTest : public SystemTest {
protected:
    // One after the other as long as the service takes them; the kernel makes those that find no
    // place among the waiting ones try again seconds later.
    static void gather(std::list<Connection>& crowd) {
        constexpr int TAKEN_WITHIN_MS = 100;
        while (crowd.size() < CROWD) {
            crowd.emplace_back(sockets::startConnectingTo(CLIENT_PORT));
            pollfd connected{crowd.back().descriptor(), POLLOUT, 0};
            poll(&connected, 1, TAKEN_WITHIN_MS);
        }
    }

    // The best of several intervals: what else the machine does may cost the service time, too.
    static void expectAlmostIdle(const ForegroundService& service) {
        constexpr std::chrono::milliseconds INTERVAL{2000};
        constexpr int ATTEMPTS = 10;
        constexpr int ALLOWED_SHARE = 20;
        std::chrono::milliseconds used{};
        for (int attempt = 0; attempt < ATTEMPTS; ++attempt) {
            const auto before = service.info().processorTime();
            std::this_thread::sleep_for(INTERVAL);
            used = service.info().processorTime() - before;
            if (programs::HAVE_OVERHEAD || used < INTERVAL / ALLOWED_SHARE) {
                return;
            }
        }
        FAIL() << used.count() << " ms of processor time in " << INTERVAL.count();
    }

    ScriptedRtos rtos;
};

TEST_F(CrowdTest, CrowdBeyondTheDescriptorsWaitsQuietlyAndAllIsWellWhenItLeaves) {
    ForegroundService service;
    service.waitUntilListening();
    FrameClient staying;
    expectServed(staying, rtos);
    const std::size_t threadsBefore = service.info().threadCount();
    service.info().setSoftLimit(RLIMIT_NOFILE, DESCRIPTOR_LIMIT);

    std::list<Connection> crowd;
    gather(crowd);
    EXPECT_TRUE(service.hasError("Too many open files: Too many open files\n"));
    EXPECT_LE(service.info().descriptors().size(), DESCRIPTOR_LIMIT);
    expectAlmostIdle(service);
    expectServed(staying, rtos);

    crowd.clear();
    EXPECT_TRUE(eventually([&] { return service.info().threadCount() == threadsBefore; }));
    FrameClient later;
    expectServed(later, rtos);
}

TEST_F(CrowdTest, CrowdBeyondTheThreadsLosesItsConnectionsQuietlyAndAllIsWellWhenItLeaves) {
    const OrdinaryUser user = anyUser();
    ForegroundService service(user.command({OrdinaryUser::foregroundProgram()}));
    service.waitUntilListening();
    FrameClient staying;
    expectServed(staying, rtos);
    const std::size_t threadsBefore = service.info().threadCount();
    user.limitThreads(service.pid(), THREAD_LIMIT);

    std::list<Connection> crowd;
    gather(crowd);
    const std::size_t refusals = CROWD + threadsBefore - THREAD_LIMIT;
    EXPECT_TRUE(service.hasError("_serverRoutine, exception: Resource temporarily unavailable\n",
                                 refusals));
    EXPECT_LE(service.info().threadCount(), THREAD_LIMIT);
    expectAlmostIdle(service);
    expectServed(staying, rtos);

    crowd.clear();
    EXPECT_TRUE(eventually([&] { return service.info().threadCount() == threadsBefore; }));
    FrameClient later;
    expectServed(later, rtos);
}

}  // namespace
