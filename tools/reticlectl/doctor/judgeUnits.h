#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/reticlectl/doctor/Finding.h"
#include "tools/reticlectl/doctor/runProgram.h"

namespace reticlectl {

/// What `systemctl show` tells of a unit.
using UnitProperties = std::map<std::string, std::string>;

/// \param text "NAME=VALUE" on each line.
[[nodiscard]] UnitProperties parseProperties(const std::string& text);

/// The command whose outcome the judgements of units take.
[[nodiscard]] std::vector<std::string> showUnit(const std::string& unit);

/// The same for the service's log.
[[nodiscard]] std::vector<std::string> readJournal();

/// How it stands with reticled.service. \param show nothing where there is no systemctl.
[[nodiscard]] Finding judgeService(const std::optional<ProgramRun>& show);

/// How it stands with the health check. \param timer, check of its two units.
[[nodiscard]] Finding judgeHealthCheck(const std::optional<ProgramRun>& timer,
                                       const std::optional<ProgramRun>& check);

/// Whether the service has complained. \param journal nothing where there is no journalctl.
[[nodiscard]] Finding judgeJournal(const std::optional<ProgramRun>& journal);

}  // namespace reticlectl
