#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "service/runService.h"
#include "tests/support/FileDescriptor.h"
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
    const Outcome outcome = runInOwnProcess([] { return runService(); });
    EXPECT_EQ(outcome.status, EXIT_SUCCESS);
    const std::string expected =
        "Address already in use: Address already in use\n"
        "Exception is caught in main \n";
    if (outcome.out.empty()) {
        EXPECT_EQ(outcome.err, expected);
    } else {
        EXPECT_EQ(outcome.out, WORKER_PROGRESS);
        EXPECT_EQ(outcome.err, expected + WORKER_ERROR);
    }
}

TEST(RunServiceDeathTest, ServiceRunsUntilItIsKilled) {
    const Outcome outcome =
        runInOwnProcess([] { return runService(); }, [] { return isListening(CLIENT_PORT); });
    EXPECT_EQ(outcome.status, std::nullopt);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
}

}  // namespace
}  // namespace reticled
