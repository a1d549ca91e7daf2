#pragma once

namespace reticled {

/// Detaches the process from its terminal: two forks with a new session between them, every
/// descriptor closed, 0, 1 and 2 pointed at /dev/null. Directory and umask stay as they were.
///
/// Call it first in main, before any thread exists. The calling process and the first child end
/// with status 0; only the second child returns. A failing step is reported and passed over.
void daemonize();

}  // namespace reticled
