#include "tools/reticlectl/Commands.h"

namespace reticlectl {

void addListCommand(CLI::App& app, const Session& session) {
    app.add_subcommand("list", "Show the reticles of the device")->callback([&session] {
        session.print(session.connect().list());
    });
}

}  // namespace reticlectl
