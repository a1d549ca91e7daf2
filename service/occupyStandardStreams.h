#pragma once

namespace reticled {

/// Points the standard streams that are closed at /dev/null, or at something else that takes nothing.
/// Otherwise the service's first sockets would take their numbers, and the log would go to the RTOS.
///
/// Call it in main, before any thread or socket exists.
void occupyStandardStreams();

}  // namespace reticled
