#pragma once

#include <string>
#include <vector>

#include "simulator/session/Session.h"

namespace sim {

/// The files from which the service makes a given reply: a list file and the reticle files that it
/// names.
///
/// The user's colours have been put into the reply's data already, so the data is kept as it is
/// and the list file gives each reticle the colour `user_color`, which puts back what it replaces:
/// even a placeholder that has stayed in the data comes out as it was.
///
/// \param reply the client's reply, as the log has it
/// \param listFile the list file's name
/// \param paths the paths of the reticle files that the service has read for it. When there are as
///        many as reticles, the files have these names, otherwise names of their own
/// \return nothing for a reply without "reticles"
[[nodiscard]] std::vector<SessionFile> replyFiles(const std::string& reply,
                                                  const std::string& listFile,
                                                  const std::vector<std::string>& paths);

}  // namespace sim
