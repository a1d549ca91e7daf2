#pragma once

#include <exception>
#include <string>

#include "tools/reticlectl/commands/Session.h"
#include "tools/reticlectl/outcome/Failure.h"

namespace reticlectl {

/// Tells the user of a run that failed: people on standard error, with --json programs on standard
/// output, too. \param problem any text.
/// \return `status`.
ExitStatus report(const std::string& problem, ExitStatus status, const Session& session);

/// The same for a command that ended by an exception: Failure, PartialChange or
/// reticle::ClientError; others pass through. \return what the program ends with.
ExitStatus report(const std::exception_ptr& failure, const Session& session);

}  // namespace reticlectl
