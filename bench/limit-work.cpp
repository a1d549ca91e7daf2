// limit-work: what the work of a command costs with the required serializer.
//   limit-work [--threads] [--parses N]
// --threads: with the service's threads instead of one. --parses: each request parsed N times.
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>

#include "bench/ReticleWork.h"
#include "bench/common/SingleThreadServer.h"
#include "bench/common/ThreadedServer.h"

int main(int count, char** values) {
    using namespace reticled::bench;
    bool isThreaded = false;
    int parses = 1;
    const std::span arguments(values, static_cast<std::size_t>(count));
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--threads") {
            isThreaded = true;
        } else if (argument == "--parses" && i + 1 < arguments.size()) {
            parses = std::stoi(arguments[++i]);
        } else {
            return EXIT_FAILURE;
        }
    }
    ReticleWork work(parses);
    const Work reply = [&work](const std::string& request) { return work.reply(request); };
    if (isThreaded) {
        ThreadedServer(reply).run();
    } else {
        SingleThreadServer(reply).run();
    }
}
