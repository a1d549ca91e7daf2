// Part of the service where coverage is counted, and only there: it is ended by a signal, and would take along what it
// has counted.
#include <csignal>
#include <cstdlib>

// NOLINTNEXTLINE(bugprone-reserved-identifier): the compiler's own name
extern "C" void __gcov_dump();

namespace {

void writeCounts(int signal) {
    __gcov_dump();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

struct CountsAtEnd {
    CountsAtEnd() {
        std::signal(SIGTERM, writeCounts);
        // A process that ends by itself, as the daemon's starters do, writes its counts once.
        std::atexit([] { std::signal(SIGTERM, SIG_IGN); });
    }
};

const CountsAtEnd countsAtEnd;

}  // namespace
