#include <gtest/gtest.h>

#include <cstdlib>
#include <exception>
#include <iostream>

#include "tests/support/Sandbox.h"
#include "tests/system/Programs.h"

// Listing the tests is part of the build and needs no sandbox; nothing else runs outside one.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    try {
        const Sandbox sandbox({programs::SOURCE_DIRECTORY, programs::BUILD_DIRECTORY});
        sandbox.run([] { return RUN_ALL_TESTS(); });
    } catch (const std::exception& failure) {
        std::cerr << "FAILED: no private namespaces for the tests: " << failure.what() << std::endl;
        return EXIT_FAILURE;
    }
}
