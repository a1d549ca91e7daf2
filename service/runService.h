#pragma once

namespace reticled {

/// Builds the components, starts the threads and waits for the rest of the process's life.
///
/// Returns only when the service could not start, after a line on std::cerr. Main thread, once.
/// \return 0 always: the exit status never tells a start-up failure.
int runService();

}  // namespace reticled
