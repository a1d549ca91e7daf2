#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/FrameClient.h"
#include "tests/support/ScriptedRtos.h"
#include "tests/support/Text.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundService.h"
#include "tests/system/Process.h"
#include "tests/system/SystemTest.h"

namespace {

namespace fs = std::filesystem;

using exchanges::expectServed;

using ShortageTest = SystemTest;

constexpr unsigned ORDINARY_USER = 58934;
constexpr unsigned ENOUGH_THREADS = 1000;

// The process limit does not bind the machine's root. In a user namespace of one user there is
// nobody else to be, and that user is not the machine's root.
bool canBeOrdinaryUser() {
    std::ifstream map("/proc/self/uid_map");
    unsigned inside = 0;
    unsigned outside = 0;
    unsigned count = 0;
    map >> inside >> outside >> count;
    return count > ORDINARY_USER;
}

std::vector<std::string> asOrdinaryUser(const std::vector<std::string>& command) {
    if (!canBeOrdinaryUser()) {
        return command;
    }
    const std::string user = std::to_string(ORDINARY_USER);
    std::vector<std::string> whole{"setpriv", "--reuid=" + user, "--regid=" + user,
                                   "--clear-groups"};
    whole.insert(whole.end(), command.begin(), command.end());
    return whole;
}

// The build directory may be closed to other users.
std::string programForEveryone() {
    const std::string program = "/tmp/reticled-foreground";
    fs::copy_file(programs::RETICLED_FOREGROUND, program, fs::copy_options::overwrite_existing);
    return program;
}

// Sets the soft limit of a process by that process's own user: nobody else need be able to.
void limitThreads(pid_t pid, const std::string& limit) {
    Process prlimit(
        asOrdinaryUser({"prlimit", "--pid", std::to_string(pid), "--nproc=" + limit + ":"}));
    ASSERT_EQ(prlimit.waitForEnd(), 0) << prlimit.standardError();
}

TEST_F(ShortageTest, ClientForWhomThereIsNoThreadLosesItsConnectionOnly) {
    ScriptedRtos rtos;
    ForegroundService service(asOrdinaryUser({programForEveryone()}));
    service.waitUntilListening();
    FrameClient before;
    expectServed(before, rtos);
    const std::string errorsBefore = service.errors();

    limitThreads(service.pid(), "1");
    FrameClient refused;
    EXPECT_TRUE(refused.connection().seesEnd());
    EXPECT_EQ(service.errors(),
              errorsBefore + "_serverRoutine, exception: Resource temporarily unavailable\n");
    expectServed(before, rtos);

    limitThreads(service.pid(), std::to_string(ENOUGH_THREADS));
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
    // The waiting accept has set one number aside already.
    FrameClient last;
    const auto start = std::chrono::steady_clock::now();
    const auto processorTime = service.info().processorTime();
    FrameClient waiting;
    waiting.sendFrame(exchanges::GET_ALL);
    EXPECT_TRUE(service.hasError("Too many open files: Too many open files\n", ATTEMPTS));
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, (ATTEMPTS - 1) * RETRY_INTERVAL);
    if (!programs::ARE_SANITIZED) {
        EXPECT_LT(service.info().processorTime() - processorTime, waited / 4);
    }
    expectServed(staying, rtos);

    leaving.connection().close();
    EXPECT_EQ(rtos.exchange(exchanges::FULL), exchanges::LIST_REQUEST);
    EXPECT_EQ(waiting.readReply(), exchanges::FULL_REPLY);
}

}  // namespace
