#include <csignal>
#include <iostream>

#include "tools/reticlectl/CommandLine.h"

int main(int argc, char** argv) {
    const auto status = reticlectl::run({argv + 1, argv + argc}, std::cin, std::cout, std::cerr,
                                        reticlectl::terminalOfProcess());
    if (status == reticlectl::ExitStatus::INTERRUPTED) {
        // As if Ctrl-C had not been caught, so that a shell ends its loop.
        std::cout.flush();
        std::raise(SIGINT);
    }
    return static_cast<int>(status);
}
