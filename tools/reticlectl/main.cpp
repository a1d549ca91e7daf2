#include <iostream>

#include "tools/reticlectl/CommandLine.h"

int main(int argc, char** argv) {
    const auto status = reticlectl::run({argv + 1, argv + argc}, std::cin, std::cout, std::cerr,
                                        reticlectl::terminalOfProcess());
    return static_cast<int>(status);
}
