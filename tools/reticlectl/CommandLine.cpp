#include "tools/reticlectl/CommandLine.h"

#include <algorithm>

#include <CLI/CLI.hpp>

#include "client/Errors.h"
#include "tools/reticlectl/Commands.h"
#include "tools/reticlectl/DisplayText.h"
#include "tools/reticlectl/Failure.h"
#include "tools/reticlectl/Session.h"

namespace reticlectl {

namespace {

constexpr const char* EXIT_STATUS_HELP =
    "Exit status: 0 done, 1 refused by the device, 2 usage, 3 cannot connect,\n"
    "4 no reply in time, 5 malformed reply.";

void addSharedOptions(CLI::App& app, Session& session) {
    constexpr int LAST_PORT = 65535;
    constexpr double SHORTEST_S = 0.001;
    constexpr double LONGEST_S = 86400;
    app.add_option("--host", session.host, "Address or name of the device")->capture_default_str();
    app.add_option("--port", session.port, "TCP port of the service")
        ->check(CLI::Range(1, LAST_PORT))
        ->capture_default_str();
    app.add_option("--timeout", session.timeoutSeconds, "Seconds to wait for the reply")
        ->check(CLI::Range(SHORTEST_S, LONGEST_S))
        ->capture_default_str();
    app.add_flag("--json", session.wantsJson, "Print the JSON of the reply");
}

void addCommands(CLI::App& app, Session& session) {
    app.require_subcommand(1);
    // Shared options may stand behind the command, too.
    app.fallthrough();
    addListCommand(app, session);
}

ExitStatus report(const std::string& problem, ExitStatus status, const Session& session) {
    session.err << "reticlectl: " << printable(problem) << '\n';
    return status;
}

ExitStatus endParsing(const CLI::App& app, const CLI::ParseError& end, const Session& session) {
    if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
        app.exit(end, session.out, session.err);
        return ExitStatus::DONE;
    }
    return report(std::string(end.what()) + ": see reticlectl --help", ExitStatus::USAGE, session);
}

ExitStatus parseAndRun(CLI::App& app, std::vector<std::string> arguments, const Session& session) {
    // CLI11 takes the arguments from the back.
    std::reverse(arguments.begin(), arguments.end());
    try {
        app.parse(std::move(arguments));
        return ExitStatus::DONE;
    } catch (const CLI::ParseError& end) {
        return endParsing(app, end, session);
    } catch (const Failure& failure) {
        return report(failure.what(), failure.status(), session);
    } catch (const reticle::Refused& refusal) {
        return report(refusal.what(), ExitStatus::REFUSED, session);
    } catch (const reticle::InvalidRequest& mistake) {
        return report(mistake.what(), ExitStatus::USAGE, session);
    } catch (const reticle::CannotConnect& error) {
        return report(error.what(), ExitStatus::CANNOT_CONNECT, session);
    } catch (const reticle::NoReply& error) {
        return report(error.what(), ExitStatus::NO_REPLY, session);
    } catch (const reticle::MalformedReply& error) {
        return report(error.what(), ExitStatus::MALFORMED_REPLY, session);
    }
}

}  // namespace

ExitStatus run(std::vector<std::string> arguments, std::istream& in, std::ostream& out,
               std::ostream& err) {
    Session session{in, out, err};
    CLI::App app("Shows and changes the reticles of a sighting device.", "reticlectl");
    app.set_version_flag("--version", "reticlectl " RETICLED_VERSION);
    app.footer(EXIT_STATUS_HELP);
    addSharedOptions(app, session);
    addCommands(app, session);
    return parseAndRun(app, std::move(arguments), session);
}

}  // namespace reticlectl
