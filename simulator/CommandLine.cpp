#include "simulator/CommandLine.h"

#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "simulator/base/numberIn.h"

namespace sim {

namespace {

constexpr int USAGE_ERROR = 2;
constexpr std::size_t LAST_PORT = 65'535;
constexpr std::size_t MAX_RETICLES_LIMIT = 100'000;
constexpr std::size_t MAX_BYTES_LIMIT = 1'000'000'000;

constexpr const char* DESCRIPTION =
    "Simulates the real-time side of a sighting device: listens on 127.0.0.1 and keeps\n"
    "reticles under a root directory that it shares with the service.\n"
    "Prints one line on standard output when it listens; Ctrl-C (SIGINT) or SIGTERM ends it.\n"
    "Plays a recorded device as well: see --replay, --record and --from-log.";

constexpr const char* SESSIONS_HELP =
    "Sessions are text files that tell what went between a service and a device. --record\n"
    "writes one while simulating. --from-log makes one from a log of reticled-foreground, both\n"
    "streams of it, whole (without --log-bytes), taken on a real device; it listens nowhere.\n"
    "--replay is a device that knows nothing but its session: the requests must be those of the\n"
    "session, in its order. At the first that differs it names the difference and ends with\n"
    "status 3, and so it does when it is ended before all have come; it writes the session's\n"
    "files into the root, which should be empty at first.\n";

CLI::Option* addNumber(CLI::App& app, const std::string& name, auto& variable, std::size_t min,
                       std::size_t max, const std::string& description) {
    const auto check = [min, max](const std::string& text) {
        const auto number = numberIn<std::size_t>(text);
        const bool isGood = number && *number >= min && *number <= max;
        return isGood ? ""
                      : "\"" + text + "\" is not a number from " + std::to_string(min) + " to " +
                            std::to_string(max);
    };
    return app.add_option(name, variable, description)->check(check)->capture_default_str();
}

void addSessionOptions(CLI::App& app, Options& options) {
    app.add_option("--record", options.recordFile, "Write a session while simulating")
        ->type_name("FILE");
    app.add_option("--replay", options.replayFile, "Play the device of a session")
        ->type_name("FILE");
    app.add_option("--from-log", options.fromLogFile, "Print the session of a service's log")
        ->type_name("FILE");
}

/// Refuses what would have no effect beside `option`.
void requireNone(const CLI::App& app, const std::string& option,
                 const std::vector<std::string>& others) {
    for (const std::string& other : others) {
        if (app.count(option) > 0 && app.count(other) > 0) {
            throw CLI::ValidationError(
                std::string(other).append(" makes no sense with ").append(option));
        }
    }
}

void requireSense(const CLI::App& app) {
    requireNone(app, "--replay",
                {"--record", "--max-reticles", "--max-bytes", "--reset", "--fault", "--web"});
    requireNone(app, "--from-log",
                {"--record", "--replay", "--root", "--port", "--max-reticles", "--max-bytes",
                 "--reset", "--verbose", "--fault", "--control", "--web"});
}

/// The words of a command are none of the library's affair.
class CtlFormatter : public CLI::Formatter {
public:
    [[nodiscard]] std::string make_usage(const CLI::App* /*app*/,
                                         std::string /*name*/) const override {
        return "Usage: rtos-sim ctl PATH COMMAND...\n";
    }
};

/// Adds `ctl`, which sends a command to a running simulator.
CLI::App& addCtl(CLI::App& app, Options& options) {
    CLI::App& ctl = *app.add_subcommand("ctl", "Send a command to a simulator that runs");
    ctl.add_option("PATH", options.commandPath, "Socket that the simulator got as --control PATH")
        ->type_name("")
        ->required();
    ctl.formatter(std::make_shared<CtlFormatter>());
    ctl.footer("Commands:\n" + commandHelp());
    // What follows belongs to the command, even if it looks like an option.
    ctl.prefix_command();
    return ctl;
}

/// Takes over the words of the command behind `ctl`.
void readCommand(const CLI::App& app, const CLI::App& ctl, Options& options) {
    for (const CLI::Option* option : app.get_options()) {
        if (option->count() > 0) {
            throw CLI::ValidationError(option->get_name() + " makes no sense with ctl");
        }
    }
    options.command = ctl.remaining();
    try {
        (void)formOf(options.command);
    } catch (const std::runtime_error& error) {
        throw CLI::ValidationError(error.what());
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

WebAddress parseWeb(const std::string& text) {
    try {
        return parseWebAddress(text);
    } catch (const std::invalid_argument& error) {
        throw CLI::ValidationError("--web " + text, error.what());
    }
}

/// CLI11 ends the parsing by an exception for help and version as well.
/// \return the exit status
int endParsing(const CLI::App& app, const CLI::ParseError& end) {
    if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
        return app.exit(end);
    }
    const std::vector<std::string> unknown = app.remaining();
    std::cerr << "rtos-sim: "
              << (unknown.empty() ? end.what() : "unknown argument " + unknown.front())
              << (app.got_subcommand("ctl") ? ": see rtos-sim ctl --help" : ": see rtos-sim --help")
              << std::endl;
    return USAGE_ERROR;
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
    addNumber(app, "--port", options.port, 0, LAST_PORT, "Port to listen on, 0 for any free one")
        ->type_name("PORT");
    addNumber(app, "--max-reticles", options.limits.reticles, 1, MAX_RETICLES_LIMIT,
              "How many reticles the device holds")
        ->type_name("COUNT");
    addNumber(app, "--max-bytes", options.limits.bytes, 1, MAX_BYTES_LIMIT,
              "How many bytes its list and all their data may take")
        ->type_name("BYTES");
    app.add_flag("--reset", options.isReset, "Go back to the factory set before listening");
    app.add_flag("--verbose", options.isVerbose, "Print events on standard error");
    std::vector<std::string> faults;
    app.add_option("--fault", faults, "What goes wrong, see below; repeatable")
        ->type_name("KIND[:ARG][@N]")
        ->allow_extra_args(false);
    app.add_option("--control", options.controlPath, "Take commands on this Unix socket, see ctl")
        ->type_name("PATH");
    std::string web;
    app.add_option("--web", web, "Show the device in browsers, on 127.0.0.1 without ADDRESS")
        ->type_name("[ADDRESS:]PORT");
    addSessionOptions(app, options);
    const CLI::App& ctl = addCtl(app, options);
    try {
        app.parse(argc, argv);
        if (ctl.parsed()) {
            readCommand(app, ctl, options);
        }
        requireSense(app);
        options.faults = parseFaults(faults);
        if (app.count("--web") > 0) {
            options.webAddress = parseWeb(web);
        }
    } catch (const CLI::ParseError& end) {
        exitStatus = endParsing(app, end);
        return std::nullopt;
    }
    return options;
}

}  // namespace sim
