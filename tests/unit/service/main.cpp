#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>

#include "tests/support/Sandbox.h"

// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizers' own name; null without them
extern "C" [[gnu::weak]] void __sanitizer_set_report_fd(void* descriptor);

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
        sandbox.run([] { return RUN_ALL_TESTS(); });
    } catch (const std::exception& failure) {
        std::cerr << "FAILED: no private namespaces for the tests: " << failure.what() << std::endl;
        return EXIT_FAILURE;
    }
}
