// limit-relay: what threads, queues and sockets cost. Answers every request with one reply after
// the same exchanges with the RTOS, all prepared beforehand; reads no JSON.
//   limit-relay [--daemon] REPLY-FILE EXCHANGE-FILE...
#include <fcntl.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bench/common/RtosLink.h"
#include "bench/common/Sockets.h"
#include "bench/common/ThreadedServer.h"
#include "bench/common/readFile.h"

namespace reticled::bench {
namespace {

void continueInChild() {
    if (check(fork(), "fork") > 0) {
        _exit(EXIT_SUCCESS);
    }
}

/// What a daemon does before anything else, so that the start-up times can be compared.
void detach() {
    continueInChild();
    setsid();
    continueInChild();
    check(close_range(0, UINT_MAX, 0), "close_range");
    check(open("/dev/null", O_RDWR), "/dev/null");  // NOLINT(cppcoreguidelines-pro-type-vararg)
    dup2(STDIN_FILENO, STDOUT_FILENO);
    dup2(STDIN_FILENO, STDERR_FILENO);
}

void relay(std::span<char*> files) {
    auto reply = std::make_shared<const std::string>(readFile(files.front()));
    std::vector<std::string> exchanges;
    for (const char* file : files.subspan(1)) {
        exchanges.push_back(readFile(file));
    }
    RtosLink rtos;
    ThreadedServer([&](const std::string&) {
        for (const std::string& request : exchanges) {
            rtos.exchange(request);
        }
        return reply;
    }).run();
}

}  // namespace
}  // namespace reticled::bench

int main(int count, char** values) {
    std::span arguments = std::span(values, static_cast<std::size_t>(count)).subspan(1);
    if (!arguments.empty() && std::string_view(arguments.front()) == "--daemon") {
        reticled::bench::detach();
        arguments = arguments.subspan(1);
    }
    if (arguments.empty()) {
        return EXIT_FAILURE;
    }
    reticled::bench::relay(arguments);
}
