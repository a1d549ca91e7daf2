#include <memory>

#include "tools/reticlectl/commands/Commands.h"
#include "tools/reticlectl/commands/NumberArguments.h"
#include "tools/reticlectl/commands/ReticleWatch.h"
#include "tools/reticlectl/terminal/DisplayText.h"

namespace reticlectl {

namespace {

/// Without the reticles that have no index, as no command can name them.
void printNames(const Session& session) {
    for (const reticle::Reticle& reticle : session.list().reticles) {
        if (reticle.index) {
            session.out << *reticle.index << '\t' << printable(reticle.name) << '\n';
        }
    }
}

}  // namespace

void addListCommand(CLI::App& app, const Session& session) {
    auto* command = app.add_subcommand("list", "Show the reticles of the device");
    const auto interval = std::make_shared<double>(0);
    const auto* watch = command
                            ->add_option("--watch", *interval,
                                         "Show them again and again, this often, until Ctrl-C")
                            ->type_name("SECONDS")
                            ->check(&checkSeconds);
    const auto onlyNames = std::make_shared<bool>(false);
    command
        ->add_flag("--names", *onlyNames, "Print the indices and names alone, a tab between them")
        ->excludes(command->get_option("--watch"));
    command->callback([&session, interval, watch, onlyNames] {
        if (*onlyNames && !session.wantsJson) {
            printNames(session);
        } else if (watch->empty()) {
            session.print(session.list());
        } else {
            ReticleWatch(session, *interval).run();
        }
    });
}

}  // namespace reticlectl
