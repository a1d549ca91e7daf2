#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>

#include "tests/support/Sandbox.h"
#include "tests/unit/service/peers/PacketsHandlerTestPeer.h"

// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizers' own name; null without them
extern "C" [[gnu::weak]] void __sanitizer_set_report_fd(void* descriptor);

/// What the thread sanitizer takes for races. A reply names its client by the descriptor's number alone,
/// and the reader thread may close it at any time, by design. And readers are detached: tests wait
/// until they have ended before their server goes, in a way that it cannot see.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer's own name
extern "C" const char* __tsan_default_suppressions() {
    return "race_top:close\nrace_top:dup\nrace:~AcceptingNetCommunicatorTest_\n";
}

namespace {

/// Tests take standard error away meanwhile; what a sanitizer finds must show all the same.
void keepSanitizerReportsVisible() {
    if (__sanitizer_set_report_fd != nullptr) {
        const std::intptr_t descriptor = dup(STDERR_FILENO);
        // NOLINTNEXTLINE(*-reinterpret-cast,performance-no-int-to-ptr): the interface wants it so
        __sanitizer_set_report_fd(reinterpret_cast<void*>(descriptor));
    }
}

}  // namespace

// Listing the tests is part of the build and needs no sandbox; nothing else runs outside one.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    keepSanitizerReportsVisible();
    try {
        const Sandbox sandbox({PROJECT_SOURCE_DIRECTORY, PROJECT_BUILD_DIRECTORY});
        sandbox.run([] {
            const int status = RUN_ALL_TESTS();
            reticled::PacketsHandlerTestPeer::stopWorker();
            return status;
        });
    } catch (const std::exception& failure) {
        std::cerr << "FAILED: no private namespaces for the tests: " << failure.what() << std::endl;
        return EXIT_FAILURE;
    }
}
