#include <memory>
#include <vector>

#include "tools/reticlectl/commands/Commands.h"
#include "tools/reticlectl/commands/NumberArguments.h"

namespace reticlectl {

namespace {

void remove(const Session& session, const std::vector<int>& indices) {
    Json::Value items(Json::arrayValue);
    for (const int index : indices) {
        items.append(index);
    }
    session.change(items, [&](reticle::ReticleClient& client) { return client.remove(indices); });
}

}  // namespace

void addDeleteCommand(CLI::App& app, const Session& session) {
    auto* command = app.add_subcommand(
        "delete", "Delete reticles, in order, up to the first that the device refuses");
    const auto indices = std::make_shared<std::vector<int>>();
    addIndexArgument(*command, *indices);
    command->callback([&session, indices] { remove(session, *indices); });
}

}  // namespace reticlectl
