#include <memory>
#include <string>

#include "tools/reticlectl/commands/Commands.h"
#include "tools/reticlectl/commands/NumberArguments.h"
#include "tools/reticlectl/commands/readReticle.h"

namespace reticlectl {

namespace {

struct UpdateArguments {
    int index = 0;
    std::string name;
    std::string file;
};

void update(const Session& session, const UpdateArguments& arguments) {
    const reticle::NewReticle reticle = readReticle(session, arguments.name, arguments.file);
    session.change(arguments.index, [&](reticle::ReticleClient& client) {
        return client.update(arguments.index, reticle.name, reticle.data);
    });
    warnOfFixedColors(session, {reticle});
}

}  // namespace

void addUpdateCommand(CLI::App& app, const Session& session) {
    auto* command = app.add_subcommand("update", "Replace a reticle's name and data");
    const auto arguments = std::make_shared<UpdateArguments>();
    addIndexArgument(*command, arguments->index);
    command->add_option("NAME", arguments->name, "Its new name")->required();
    command->add_option("FILE", arguments->file, "Its new data, UTF-8 text; - is standard input")
        ->required();
    command->callback([&session, arguments] { update(session, *arguments); });
}

}  // namespace reticlectl
