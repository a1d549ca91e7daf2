#pragma once

namespace reticled {

/// Builds the components, starts the threads and waits for the rest of the process's life.
///
/// A service that cannot start ends the process at once, after a line on std::cerr, whatever its
/// threads are at. Main thread, once.
/// \return 0, as the process does that could not start: the exit status never tells.
int runService();

}  // namespace reticled
