#include <memory>
#include <string>

#include "tools/reticlectl/commands/Commands.h"
#include "tools/reticlectl/commands/NumberArguments.h"
#include "tools/reticlectl/commands/Ping.h"

namespace reticlectl {

namespace {

struct PingArguments {
    std::size_t count = 1;
    double intervalSeconds = 1;
};

std::string checkCount(const std::string& text) {
    constexpr int MOST = 1'000'000'000;
    return checkNumber(text, 0, MOST);
}

}  // namespace

void addPingCommand(CLI::App& app, const Session& session, ExitStatus& status) {
    auto* command = app.add_subcommand("ping", "Ask whether the service answers, and how fast");
    const auto arguments = std::make_shared<PingArguments>();
    command->add_option("--count", arguments->count, "How often to ask, 0 for until Ctrl-C")
        ->type_name("N")
        ->check(&checkCount)
        ->capture_default_str();
    command->add_option("--interval", arguments->intervalSeconds, "How long from one to the next")
        ->type_name("SECONDS")
        ->check(&checkSeconds)
        ->capture_default_str();
    command->callback([&session, &status, arguments] {
        status = Ping(session, arguments->count, arguments->intervalSeconds).run();
    });
}

}  // namespace reticlectl
