#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>

#include "tests/fuzz/FuzzTarget.h"
#include "tests/support/Sandbox.h"

namespace {

/// The service logs every step; without a buffer the streams drop it before it is formatted.
void silenceLog() {
    std::cout.rdbuf(nullptr);
    std::cerr.rdbuf(nullptr);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Sandbox sandbox({PROJECT_SOURCE_DIRECTORY, PROJECT_BUILD_DIRECTORY});
        sandbox.run([=] {
            silenceLog();
            return driveFuzzTarget(argc, argv);
        });
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "FAILED: no private namespaces: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
