#include <memory>

#include "tools/reticlectl/commands/Commands.h"
#include "tools/reticlectl/commands/NumberArguments.h"
#include "tools/reticlectl/commands/ReticleWatch.h"

namespace reticlectl {

void addListCommand(CLI::App& app, const Session& session) {
    auto* command = app.add_subcommand("list", "Show the reticles of the device");
    const auto interval = std::make_shared<double>(0);
    const auto* watch = command
                            ->add_option("--watch", *interval,
                                         "Show them again and again, this often, until Ctrl-C")
                            ->type_name("SECONDS")
                            ->check(&checkSeconds);
    command->callback([&session, interval, watch] {
        if (watch->empty()) {
            session.print(session.list());
        } else {
            ReticleWatch(session, *interval).run();
        }
    });
}

}  // namespace reticlectl
