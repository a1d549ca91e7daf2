#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>

#include "tests/support/FrameClient.h"
#include "tests/support/ScriptedRtos.h"
#include "tests/support/Text.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundService.h"
#include "tests/system/OrdinaryUser.h"
#include "tests/system/SystemTest.h"

namespace {

using exchanges::expectServed;

using ShortageTest = SystemTest;

constexpr unsigned ENOUGH_THREADS = 1000;
constexpr OrdinaryUser USER{58934};

TEST_F(ShortageTest, ClientForWhomThereIsNoThreadLosesItsConnectionOnly) {
    ScriptedRtos rtos;
    ForegroundService service(USER.command({OrdinaryUser::foregroundProgram()}));
    service.waitUntilListening();
    FrameClient before;
    expectServed(before, rtos);
    const std::string errorsBefore = service.errors();

    USER.limitThreads(service.pid(), 1);
    FrameClient refused;
    EXPECT_TRUE(refused.connection().seesEnd());
    EXPECT_EQ(service.errors(),
              errorsBefore + "_serverRoutine, exception: Resource temporarily unavailable\n");
    expectServed(before, rtos);

    USER.limitThreads(service.pid(), ENOUGH_THREADS);
    FrameClient after;
    expectServed(after, rtos);
}

TEST_F(ShortageTest, ClientWaitsUntilThereIsADescriptorAndNoProcessorTimeIsBurnt) {
    constexpr int ATTEMPTS = 50;
    constexpr std::chrono::milliseconds RETRY_INTERVAL{10};
    ScriptedRtos rtos;
    ForegroundService service;
    service.waitUntilListening();
    FrameClient staying;
    expectServed(staying, rtos);
    FrameClient leaving;
    expectServed(leaving, rtos);

    // Standard streams, RTOS socket, listening socket, two clients.
    constexpr std::size_t IN_USE = 7;
    EXPECT_TRUE(eventually([&] { return service.info().descriptors().size() == IN_USE; }));
    service.info().setSoftLimit(RLIMIT_NOFILE, IN_USE);
    const auto start = std::chrono::steady_clock::now();
    const auto processorTime = service.info().processorTime();
    // The waiting accept has set one number aside already.
    FrameClient last;
    FrameClient waiting;
    waiting.sendFrame(exchanges::GET_ALL);
    EXPECT_TRUE(service.hasError("Too many open files: Too many open files\n", ATTEMPTS));
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, (ATTEMPTS - 1) * RETRY_INTERVAL);
    constexpr int GENEROUSLY = 50;
    EXPECT_LT(waited, GENEROUSLY * ATTEMPTS * RETRY_INTERVAL);
    if (!programs::HAVE_OVERHEAD) {
        EXPECT_LT(service.info().processorTime() - processorTime, waited / 4);
    }
    expectServed(staying, rtos);

    leaving.connection().close();
    EXPECT_EQ(rtos.exchange(exchanges::FULL), exchanges::LIST_REQUEST);
    EXPECT_EQ(waiting.readReply(), exchanges::FULL_REPLY);
}

}  // namespace
