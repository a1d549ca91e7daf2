#include "simulator/CommandLine.h"

#include <stdexcept>
#include <string>

#include <CLI/CLI.hpp>

namespace sim {

namespace {

constexpr int USAGE_ERROR = 2;
constexpr std::size_t MAX_RETICLES_LIMIT = 100'000;

constexpr const char* DESCRIPTION =
    "Simulates the real-time side of a sighting device: listens on 127.0.0.1 and keeps\n"
    "reticles under a root directory that it shares with the service.\n"
    "Prints one line on standard output when it listens; Ctrl-C (SIGINT) or SIGTERM ends it.\n"
    "Plays a recorded device as well: see --replay, --record and --from-log.";

constexpr const char* SESSIONS_HELP =
    "Sessions are text files that tell what went between a service and a device. --record\n"
    "writes one while simulating. --from-log makes one from a log of reticled-foreground, both\n"
    "streams of it, taken on a real device; it listens nowhere. --replay is a device that knows\n"
    "nothing but its session: the requests must be those of the session, in its order. At the\n"
    "first that differs it names the difference and ends with status 3, and so it does when it\n"
    "is ended before all have come; it writes the session's files into the root, which should be\n"
    "empty at first.\n";

/// Adds the options that take a session or make one, which exclude what would have no effect.
void addSessionOptions(CLI::App& app, Options& options) {
    app.add_option("--record", options.recordFile, "Write a session while simulating")
        ->type_name("FILE");
    app.add_option("--replay", options.replayFile, "Play the device of a session")
        ->type_name("FILE")
        ->excludes("--record")
        ->excludes("--reset")
        ->excludes("--max-reticles")
        ->excludes("--fault");
    CLI::Option* const fromLog =
        app.add_option("--from-log", options.fromLogFile, "Print the session of a service's log")
            ->type_name("FILE");
    for (const char* other : {"--record", "--replay", "--root", "--port", "--max-reticles",
                              "--reset", "--verbose", "--fault"}) {
        fromLog->excludes(other);
    }
}

std::string footer() {
    return std::string(SESSIONS_HELP) +
           "\n"
           "Faults, as KIND[:ARG][@N]: on exchange N of the run, counted from 1 over all\n"
           "connections and kinds of request; without @N on every one. \"refuse\" keeps the\n"
           "request from being carried out, all others spoil the answer to one that was.\n"
           "Faults on the same exchange add up; of two that contradict each other the one\n"
           "further down wins. \"list:\" marks those that concern list requests only.\n" +
           faultHelp();
}

std::vector<Fault> parseFaults(const std::vector<std::string>& texts) {
    std::vector<Fault> faults;
    for (const std::string& text : texts) {
        try {
            faults.push_back(parseFault(text));
        } catch (const std::invalid_argument& error) {
            throw CLI::ValidationError("--fault " + text, error.what());
        }
    }
    return faults;
}

}  // namespace

std::optional<Options> parseCommandLine(int argc, const char* const* argv, int& exitStatus) {
    Options options;
    CLI::App app(DESCRIPTION, "rtos-sim");
    app.set_version_flag("--version", "rtos-sim " RETICLED_VERSION);
    app.footer(footer());
    app.add_option("--root", options.root, "Directory of the shared storage, made if missing")
        ->type_name("DIR")
        ->capture_default_str();
    app.add_option("--port", options.port, "Port to listen on, 0 for any free one")
        ->type_name("PORT")
        ->capture_default_str();
    app.add_option("--max-reticles", options.maxReticles, "How many reticles the device holds")
        ->type_name("COUNT")
        ->check(CLI::Range(std::size_t{1}, MAX_RETICLES_LIMIT))
        ->capture_default_str();
    app.add_flag("--reset", options.isReset, "Go back to the factory set before listening");
    app.add_flag("--verbose", options.isVerbose, "Print each exchange on standard error");
    std::vector<std::string> faults;
    app.add_option("--fault", faults, "What goes wrong, see below; repeatable")
        ->type_name("KIND[:ARG][@N]")
        ->allow_extra_args(false);
    addSessionOptions(app, options);
    try {
        app.parse(argc, argv);
        options.faults = parseFaults(faults);
    } catch (const CLI::ParseError& error) {
        exitStatus = app.exit(error) == 0 ? 0 : USAGE_ERROR;
        return std::nullopt;
    }
    return options;
}

}  // namespace sim
