#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

#include "tests/support/Ports.h"
#include "tests/system/ForegroundService.h"
#include "tests/system/OrdinaryUser.h"
#include "tests/system/SystemTest.h"

namespace {

constexpr auto GIVES_UP = "Exception is caught in main \n";

/// What the service lacks while it starts.
class FailingStartTest : public SystemTest {
protected:
    // Expects that the service ends with these error lines, and no other.
    static void expectEnd(const std::vector<std::string>& command, const std::string& why) {
        ForegroundService service(command);
        EXPECT_EQ(service.waitForEnd(), 0);
        EXPECT_EQ(service.errors(), why + GIVES_UP);
        EXPECT_FALSE(isListening(CLIENT_PORT));
    }

    static std::vector<std::string> whereCallFails(const std::string& call, int error) {
        const std::string fault =
            "enable name=posix/io/net/" + call + ",failinfo=" + std::to_string(error);
        return {"fiu-run", "-x", "-c", fault, "-f", "", programs::RETICLED_FOREGROUND};
    }

    static std::vector<std::string> withThreads(int count) {
        constexpr OrdinaryUser USER{58935};
        return USER.command({"prlimit", "--nproc=" + std::to_string(count) + ":",
                             OrdinaryUser::foregroundProgram()});
    }
};

TEST_F(FailingStartTest, EndsWithoutASocket) {
    // The RTOS link's socket, its option, the listening socket's option.
    expectEnd(whereCallFails("socket", EMFILE),
              "Too many open files: Too many open files\n"
              "Bad file descriptor: Bad file descriptor\n"
              "Bad file descriptor: Bad file descriptor\n");
}

TEST_F(FailingStartTest, EndsWithoutTheRightToThePort) {
    expectEnd(whereCallFails("bind", EACCES), "Permission denied: Permission denied\n");
}

TEST_F(FailingStartTest, EndsWhenSomebodyElseListensFirst) {
    expectEnd(whereCallFails("listen", EADDRINUSE),
              "Address already in use: Address already in use\n");
}

TEST_F(FailingStartTest, EndsWithoutASecondThread) {
    // The main thread and the worker.
    expectEnd(withThreads(2), "");
}

TEST_F(FailingStartTest, EndsWithoutAThirdThread) {
    expectEnd(withThreads(3), "");
}

// A limit of stacks is the size of every thread's stack: more than there are addresses.
TEST_F(FailingStartTest, EndsWithoutAThread) {
    constexpr auto NO_ROOM_BYTES = "200000000000000";
    expectEnd(
        {"prlimit", std::string("--stack=") + NO_ROOM_BYTES + ":", programs::RETICLED_FOREGROUND},
        "");
}

}  // namespace
