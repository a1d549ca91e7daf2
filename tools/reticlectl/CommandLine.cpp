#include "tools/reticlectl/CommandLine.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include <CLI/CLI.hpp>

#include "client/Errors.h"
#include "tools/reticlectl/BracketShield.h"
#include "tools/reticlectl/Commands.h"
#include "tools/reticlectl/DisplayText.h"
#include "tools/reticlectl/Failure.h"
#include "tools/reticlectl/Session.h"

namespace reticlectl {

namespace {

constexpr const char* FOOTER =
    "The options of reticlectl --help may also stand behind a command.\n"
    "Exit status: 0 done, 1 refused by the device, 2 usage, 3 cannot connect,\n"
    "4 no reply in time, 5 malformed reply.";

/// \returns what is wrong with `text`, nothing when it is a time-out.
std::string checkTimeout(const std::string& text) {
    constexpr double SHORTEST_S = 0.001;
    constexpr double LONGEST_S = 86400;
    double seconds = 0;
    const char* end = std::from_chars(text.data(), text.data() + text.size(), seconds).ptr;
    // Written so that "nan" is refused, too.
    const bool isTimeout =
        end == text.data() + text.size() && seconds >= SHORTEST_S && seconds <= LONGEST_S;
    return isTimeout ? "" : "\"" + text + "\" is not a number of seconds from 0.001 to 86400";
}

void addSharedOptions(CLI::App& app, Session& session) {
    constexpr int LAST_PORT = 65535;
    app.add_option("--host", session.host, "Address or name of the device")
        ->type_name("HOST")
        ->capture_default_str();
    app.add_option("--port", session.port, "TCP port of the service")
        ->type_name("PORT")
        ->check(CLI::Range(1, LAST_PORT, "1..65535"))
        ->capture_default_str();
    app.add_option("--timeout", session.timeoutSeconds,
                   "How long to wait for the reply, fractions allowed")
        ->type_name("SECONDS")
        ->check(&checkTimeout)
        ->capture_default_str();
    app.add_flag("--json", session.wantsJson, "Print the JSON of the reply");
}

void addCommands(CLI::App& app, const Session& session) {
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

ExitStatus report(const std::string& problem, ExitStatus status, const Session& session) {
    session.err << "reticlectl: " << printable(problem) << '\n';
    return status;
}

ExitStatus reportRefusal(const reticle::Refused& refusal, const Session& session) {
    if (session.wantsJson) {
        session.print(refusal.reply());
    }
    return report(refusal.what(), ExitStatus::REFUSED, session);
}

std::string describe(const CLI::App& app, const CLI::ParseError& error) {
    const std::vector<std::string> unknown = app.remaining();
    if (app.get_subcommands().empty() && !unknown.empty()) {
        return "unknown command or option " + unshieldBrackets(unknown.front());
    }
    return error.what();
}

/// CLI11 ends the parsing by an exception for help and version as well.
ExitStatus endParsing(const CLI::App& app, const CLI::ParseError& end, const Session& session) {
    if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
        app.exit(end, session.out, session.err);
        return ExitStatus::DONE;
    }
    return report(describe(app, end) + ": see reticlectl --help", ExitStatus::USAGE, session);
}

ExitStatus finish(const Session& session) {
    if (session.out.flush()) {
        return ExitStatus::DONE;
    }
    return report("cannot write the output: check where it goes", ExitStatus::USAGE, session);
}

ExitStatus parseAndRun(CLI::App& app, const std::vector<std::string>& arguments,
                       const Session& session) {
    try {
        app.parse(forParsing(arguments));
        return finish(session);
    } catch (const CLI::ParseError& end) {
        return endParsing(app, end, session);
    } catch (const Failure& failure) {
        return report(failure.what(), failure.status(), session);
    } catch (const reticle::Refused& refusal) {
        return reportRefusal(refusal, session);
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

ExitStatus run(const std::vector<std::string>& arguments, std::istream& in, std::ostream& out,
               std::ostream& err) {
    Session session{in, out, err};
    CLI::App app("Shows and changes the reticles of a sighting device.", "reticlectl");
    app.set_version_flag("--version", "reticlectl " RETICLED_VERSION);
    app.footer(FOOTER);
    addSharedOptions(app, session);
    addCommands(app, session);
    unshieldOptions(app);
    return parseAndRun(app, arguments, session);
}

}  // namespace reticlectl
