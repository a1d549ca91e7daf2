#pragma once

#include <CLI/App.hpp>

#include "tools/reticlectl/commands/Session.h"
#include "tools/reticlectl/outcome/Failure.h"

namespace reticlectl {

/// Each declares one command and its arguments. The command runs when the whole command line has
/// been read, and throws reticle::ClientError or Failure. `session` must outlive `app`.
void addListCommand(CLI::App& app, const Session& session);
void addActivateCommand(CLI::App& app, const Session& session);
void addAddCommand(CLI::App& app, const Session& session);
void addUpdateCommand(CLI::App& app, const Session& session);
void addDeleteCommand(CLI::App& app, const Session& session);
void addShowCommand(CLI::App& app, const Session& session);
void addGalleryCommand(CLI::App& app, const Session& session);
void addTraceCommand(CLI::App& app, const Session& session);

/// The command that prints the help, its own or that of another command of `app`.
void addHelpCommand(CLI::App& app, const Session& session);

/// The same; the command's own verdict goes to `status`, which must outlive `app`, too.
void addPingCommand(CLI::App& app, const Session& session, ExitStatus& status);
void addDoctorCommand(CLI::App& app, const Session& session, ExitStatus& status);

}  // namespace reticlectl
