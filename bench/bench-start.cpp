// bench-start: starts a program and prints the nanoseconds until it has accepted a connection, and
// until its first reply has arrived.
//   bench-start REQUEST-FILE REPLY-FILE PROGRAM [ARGUMENT...]
// The program is left running.
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <span>
#include <string>

#include "bench/common/Frame.h"
#include "bench/common/Sockets.h"
#include "bench/common/readFile.h"

namespace reticled::bench {
namespace {

using Clock = std::chrono::steady_clock;

std::chrono::nanoseconds::rep nanosecondsSince(Clock::time_point begin) {
    return std::chrono::nanoseconds(Clock::now() - begin).count();
}

/// The program's progress lines are not for whoever reads the time.
[[noreturn]] void execute(char** program) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): open is what it is
    dup2(check(open("/dev/null", O_WRONLY), "/dev/null"), STDOUT_FILENO);
    execv(program[0], program);
    _exit(EXIT_FAILURE);
}

int start(std::span<char*> arguments) {
    const std::string request = readFile(arguments[1]);
    const std::string expected = readFile(arguments[2]);
    char** const program = &arguments[3];
    const auto begin = Clock::now();
    if (check(fork(), "fork") == 0) {
        execute(program);
    }
    const int connection = connectTo(CLIENT_PORT);
    const auto accepted = nanosecondsSince(begin);
    sendFrame(connection, request);
    const auto reply = receiveFrame(connection);
    std::cout << accepted << ' ' << nanosecondsSince(begin) << '\n';
    return reply == expected ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace
}  // namespace reticled::bench

int main(int count, char** values) {
    constexpr int leastArguments = 4;
    if (count < leastArguments) {
        return EXIT_FAILURE;
    }
    return reticled::bench::start({values, static_cast<std::size_t>(count) + 1});
}
