// reticled-foreground: the service under a supervisor or on a terminal, which keep its log lines.
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iostream>
#include <string_view>
#include <vector>

#include "base/LoggedJson.h"
#include "service/occupyStandardStreams.h"
#include "service/runService.h"

namespace {

constexpr int EXIT_USAGE = 2;
constexpr auto USAGE = "Usage: reticled-foreground [--log-bytes N]\n";
constexpr auto HELP =
    "Runs the reticle service with its log on the standard streams.\n"
    "\n"
    "Options:\n"
    "  --log-bytes N  Write of each JSON text in the log no more than its first N bytes\n"
    "  --help         Print this text and end\n"
    "  --version      Print the version and end\n";

/// Sets the length that `text` tells. \return false when it is no number.
bool setLogBytes(std::string_view text) {
    std::size_t bytes = 0;
    const char* const textEnd = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), textEnd, bytes);
    if (error != std::errc{} || end != textEnd) {
        return false;
    }
    reticled::LoggedJson::cutBeyond(bytes);
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    using Arguments = std::vector<std::string_view>;
    reticled::occupyStandardStreams();
    const Arguments arguments(argv + std::min(argc, 1), argv + argc);
    if (arguments == Arguments{"--help"}) {
        std::cout << USAGE << HELP << std::flush;
        return std::cout ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    if (arguments == Arguments{"--version"}) {
        std::cout << "reticled-foreground " RETICLED_VERSION "\n" << std::flush;
        return std::cout ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    const bool hasLogBytes = arguments.size() == 2 && arguments[0] == "--log-bytes";
    if (!arguments.empty() && !(hasLogBytes && setLogBytes(arguments[1]))) {
        std::cerr << USAGE;
        return EXIT_USAGE;
    }
    return reticled::runService();
}
