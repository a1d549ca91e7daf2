#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "service/runService.h"
#include "tests/support/FileDescriptor.h"
#include "tests/support/Patience.h"
#include "tests/support/Ports.h"
#include "tests/support/Sockets.h"
#include "tests/unit/service/OwnProcess.h"

namespace reticled {
namespace {

// The worker may still be on its way to its first request when the process ends; then it never
// takes the empty one that would wake it.
constexpr auto WORKER_PROGRESS = "PacketsHandler::_handlerRoutine, json req: \n";
constexpr auto WORKER_ERROR = "_handlerRoutine, exception: getStrVal: json msg is empty\n";

TEST(RunServiceDeathTest, PortThatIsTakenEndsTheProcessWithStatusZero) {
    const FileDescriptor taken = sockets::listenOn(CLIENT_PORT);
    OwnProcess process([] { return runService(); });
    EXPECT_EQ(process.waitForEnd(), EXIT_SUCCESS);
    const std::string expected =
        "Address already in use: Address already in use\n"
        "Exception is caught in main \n";
    if (process.out().empty()) {
        EXPECT_EQ(process.err(), expected);
    } else {
        EXPECT_EQ(process.out(), WORKER_PROGRESS);
        EXPECT_EQ(process.err(), expected + WORKER_ERROR);
    }
}

TEST(RunServiceDeathTest, ServiceRunsUntilItIsKilled) {
    OwnProcess process([] { return runService(); });
    EXPECT_TRUE(eventually([] { return isListening(CLIENT_PORT); }));
    EXPECT_TRUE(process.isAlive());
    EXPECT_EQ(process.out(), "");
    EXPECT_EQ(process.err(), "");
}

}  // namespace
}  // namespace reticled
