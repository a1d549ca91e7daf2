#include <memory>
#include <string>

#include "tools/reticlectl/commands/Commands.h"
#include "tools/reticlectl/commands/suggestionFor.h"
#include "tools/reticlectl/outcome/Failure.h"

namespace reticlectl {

namespace {

/// By itself it would print the help of the command that was given.
std::string helpOf(const CLI::App& app) {
    return app.get_formatter()->make_help(&app, app.get_name(), CLI::AppFormatMode::Normal);
}

std::string helpOf(CLI::App& app, const std::string& command) {
    const auto found = app.get_subcommands(
        [&command](const CLI::App* each) { return each->get_name() == command; });
    if (found.empty()) {
        throw Failure(
            ExitStatus::USAGE,
            "unknown command " + command + suggestionFor(command, app) + ": see reticlectl --help");
    }
    return found.front()->help("reticlectl");
}

}  // namespace

void addHelpCommand(CLI::App& app, const Session& session) {
    auto* command = app.add_subcommand("help", "Print this help, or that of a command");
    const auto about = std::make_shared<std::string>();
    command->add_option("COMMAND", *about, "The command that the help is about");
    command->callback([&app, &session, about] {
        session.out << (about->empty() ? helpOf(app) : helpOf(app, *about));
    });
}

}  // namespace reticlectl
