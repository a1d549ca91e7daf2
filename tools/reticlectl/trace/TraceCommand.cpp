#include <memory>
#include <string>

#include "tools/reticlectl/commands/Commands.h"
#include "tools/reticlectl/trace/Trace.h"

namespace reticlectl {

namespace {

struct TraceArguments {
    std::string listen = "127.0.0.1:3452";
    bool passesAll = false;
};

}  // namespace

void addTraceCommand(CLI::App& app, const Session& session) {
    auto* command = app.add_subcommand(
        "trace", "Stand between a client and the service and name the client's mistakes");
    const auto arguments = std::make_shared<TraceArguments>();
    command->add_option("--listen", arguments->listen, "Where clients connect to")
        ->type_name("ADDRESS:PORT")
        ->check(&checkListenAddress)
        ->capture_default_str();
    command->add_flag("--pass-all", arguments->passesAll,
                      "Pass on requests that would end the service, too");
    command->callback(
        [&session, arguments] { Trace(session, arguments->listen, arguments->passesAll).run(); });
}

}  // namespace reticlectl
