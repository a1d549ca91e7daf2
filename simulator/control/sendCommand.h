#pragma once

#include <filesystem>
#include <ostream>

#include "simulator/control/CommandForm.h"

namespace sim {

/// Has the simulator that listens at the socket `path` carry out a command. Prints on `output` what
/// it gives, JSON for people and programs; nothing where there is nothing to tell. For "events" it
/// prints each event on a line until the simulator ends. For "add" the last word is a file that is
/// read here.
/// \throws std::runtime_error where no simulator listens there, the file cannot be read, the
///         command is refused, or the simulator ends amid it.
void sendCommand(const std::filesystem::path& path, Words words, std::ostream& output);

}  // namespace sim
