#pragma once

#include <map>
#include <string>
#include <vector>

#include "simulator/session/Session.h"

namespace sim {

/// Keeps out of a session what its earlier exchanges have written already.
class ChangedFiles {
public:
    /// Those of `files` that are new or have another text than when they were last given.
    [[nodiscard]] std::vector<SessionFile> of(std::vector<SessionFile> files);

private:
    std::map<std::string, std::string> _texts;  ///< by name, as last given
};

}  // namespace sim
