#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "processing/PacketsHandler.h"
#include "service/runService.h"
#include "tests/support/FileDescriptor.h"
#include "tests/support/Patience.h"
#include "tests/support/Ports.h"
#include "tests/support/Sockets.h"
#include "tests/unit/service/OwnProcess.h"

namespace reticled {
namespace {

TEST(RunServiceDeathTest, FailedStartDoesNotWaitForAWorkerThatConnects) {
    const FileDescriptor taken = sockets::listenOn(CLIENT_PORT);
    // An RTOS that does not accept: somebody waits already, and the service can only try again.
    const FileDescriptor rtos = sockets::listenOn(RTOS_PORT, 0);
    const FileDescriptor waiting = sockets::connectTo(RTOS_PORT);
    OwnProcess process([] {
        const auto worker = PacketsHandler::getInstance();
        PacketStorage::getInstance()->push(
            REQUEST_QUEUE, std::make_shared<Packet>(NO_SOCKET, R"({"action":"RETICLES_GET_ALL"})"));
        return eventually([] { return isBeingCalled(RTOS_PORT); }) ? runService() : EXIT_FAILURE;
    });
    EXPECT_EQ(process.waitForEnd(), EXIT_SUCCESS);
    EXPECT_EQ(process.err(),
              "Address already in use: Address already in use\n"
              "Exception is caught in main \n");
}

}  // namespace
}  // namespace reticled
