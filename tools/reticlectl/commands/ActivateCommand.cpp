#include <memory>

#include "tools/reticlectl/commands/Commands.h"
#include "tools/reticlectl/commands/NumberArguments.h"

namespace reticlectl {

void addActivateCommand(CLI::App& app, const Session& session) {
    auto* command = app.add_subcommand("activate", "Make a reticle the active one");
    const auto index = std::make_shared<int>();
    addIndexArgument(*command, *index);
    command->callback([&session, index] {
        session.change(*index,
                       [&](reticle::ReticleClient& client) { return client.activate(*index); });
    });
}

}  // namespace reticlectl
