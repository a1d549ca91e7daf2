#include "tools/reticlectl/CommandLine.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>

#include <CLI/CLI.hpp>

#include "tools/reticlectl/Report.h"
#include "tools/reticlectl/commands/BracketShield.h"
#include "tools/reticlectl/commands/Commands.h"
#include "tools/reticlectl/commands/NumberArguments.h"
#include "tools/reticlectl/commands/Session.h"
#include "tools/reticlectl/commands/suggestionFor.h"

namespace reticlectl {

namespace {

constexpr const char* FOOTER =
    "The options of reticlectl --help may also stand behind a command.\n"
    "Exit status: 0 done, 1 refused by the device or found to be bad, 2 usage,\n"
    "3 cannot connect, 4 no reply in time, 5 malformed reply, 130 interrupted by Ctrl-C.";

constexpr const char* HOST_OPTION = "--host";
constexpr const char* PORT_OPTION = "--port";

/// The variable's text where the option is not given; nothing for an empty one.
std::string environmentFor(const CLI::App& app, const char* option, const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && app.count(option) == 0 ? value : "";
}

/// Takes the device from the environment where the command line does not name it.
void takeEnvironment(const CLI::App& app, Session& session) {
    if (const std::string host = environmentFor(app, HOST_OPTION, "RETICLED_HOST"); !host.empty()) {
        session.host = host;
    }
    if (const std::string port = environmentFor(app, PORT_OPTION, "RETICLED_PORT"); !port.empty()) {
        if (const std::string problem = checkPort(port); !problem.empty()) {
            throw Failure(ExitStatus::USAGE, "RETICLED_PORT: " + problem);
        }
        session.port = static_cast<std::uint16_t>(std::stoi(port));
    }
}

void addSharedOptions(CLI::App& app, Session& session) {
    app.add_option(HOST_OPTION, session.host,
                   "Address or name of the device; else RETICLED_HOST has it")
        ->type_name("HOST")
        ->capture_default_str();
    app.add_option(PORT_OPTION, session.port, "TCP port of the service; else RETICLED_PORT has it")
        ->type_name("PORT")
        ->check(&checkPort)
        ->capture_default_str();
    app.add_option("--timeout", session.timeoutSeconds,
                   "How long to wait for the reply, fractions allowed")
        ->type_name("SECONDS")
        ->check(&checkSeconds)
        ->capture_default_str();
    app.add_option("--color", session.color, "Whether tables show colours")
        ->type_name("WHEN")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->capture_default_str();
    app.add_flag("--json", session.wantsJson, "Print JSON: the reply, or what went wrong");
}

void addCommands(CLI::App& app, const Session& session, ExitStatus& status) {
    app.require_subcommand(1);
    // Shared options may stand behind the command, too.
    app.fallthrough();
    addListCommand(app, session);
    addActivateCommand(app, session);
    addAddCommand(app, session);
    addUpdateCommand(app, session);
    addDeleteCommand(app, session);
    addShowCommand(app, session);
    addGalleryCommand(app, session);
    addPingCommand(app, session, status);
    addDoctorCommand(app, session, status);
    addTraceCommand(app, session);
    addHelpCommand(app, session);
}

void unshieldOptions(CLI::App& app) {
    for (CLI::Option* option : app.get_options()) {
        option->transform(&unshieldBrackets);
    }
    for (CLI::App* command : app.get_subcommands({})) {
        unshieldOptions(*command);
    }
}

/// The arguments as CLI11 takes them: from the back.
std::vector<std::string> forParsing(const std::vector<std::string>& arguments) {
    std::vector<std::string> shielded;
    std::transform(arguments.rbegin(), arguments.rend(), std::back_inserter(shielded),
                   &shieldBrackets);
    return shielded;
}

std::string describe(const CLI::App& app, const CLI::ParseError& error) {
    const std::vector<std::string> unknown = app.remaining();
    if (app.get_subcommands().empty() && !unknown.empty()) {
        const std::string word = unshieldBrackets(unknown.front());
        return "unknown command or option " + word + suggestionFor(word, app);
    }
    return error.what();
}

/// What prints the help on a mistake: the command's own, or that of the options that all share.
std::string helpFor(const CLI::App& app, const CLI::ParseError& error) {
    const std::string message = error.what();
    const bool isShared = app.get_option_no_throw(message.substr(0, message.find(':'))) != nullptr;
    const std::vector<CLI::App*> commands = app.get_subcommands();
    return "reticlectl " +
           (commands.empty() || isShared ? "" : commands.front()->get_name() + ' ') + "--help";
}

/// CLI11 ends the parsing by an exception for help and version as well.
ExitStatus endParsing(const CLI::App& app, const CLI::ParseError& end, const Session& session) {
    if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
        app.exit(end, session.out, session.err);
        return ExitStatus::DONE;
    }
    return report(describe(app, end) + ": see " + helpFor(app, end), ExitStatus::USAGE, session);
}

ExitStatus finish(ExitStatus status, const Session& session) {
    if (session.out.flush()) {
        return status;
    }
    return report("cannot write the output: check where it goes", ExitStatus::USAGE, session);
}

ExitStatus parseAndRun(CLI::App& app, const std::vector<std::string>& arguments,
                       const ExitStatus& status, const Session& session) {
    try {
        app.parse(forParsing(arguments));
        return finish(status, session);
    } catch (const CLI::ParseError& end) {
        return endParsing(app, end, session);
    } catch (...) {
        return report(std::current_exception(), session);
    }
}

}  // namespace

ExitStatus run(const std::vector<std::string>& arguments, std::istream& in, std::ostream& out,
               std::ostream& err, const Terminal& terminal) {
    Session session{in, out, err, terminal};
    // Known before the parsing, which may fail.
    session.wantsJson = std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
    ExitStatus status = ExitStatus::DONE;
    CLI::App app("Shows and changes the reticles of a sighting device.", "reticlectl");
    app.set_version_flag("--version", "reticlectl " RETICLED_VERSION);
    app.footer(FOOTER);
    addSharedOptions(app, session);
    addCommands(app, session, status);
    app.parse_complete_callback([&app, &session] {
        if (!app.got_subcommand("help")) {
            takeEnvironment(app, session);
        }
    });
    unshieldOptions(app);
    return parseAndRun(app, arguments, status, session);
}

}  // namespace reticlectl
