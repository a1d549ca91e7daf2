#include <memory>
#include <vector>

#include "tools/reticlectl/commands/Commands.h"
#include "tools/reticlectl/commands/NumberArguments.h"

namespace reticlectl {

void addDeleteCommand(CLI::App& app, const Session& session) {
    auto* command = app.add_subcommand(
        "delete", "Delete reticles, in order, up to the first that the device refuses");
    const auto indices = std::make_shared<std::vector<int>>();
    addIndexArgument(*command, *indices);
    command->callback([&session, indices] { session.print(session.connect().remove(*indices)); });
}

}  // namespace reticlectl
