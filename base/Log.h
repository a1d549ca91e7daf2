#pragma once

#include <mutex>
#include <ostream>

namespace reticled {

/// Guards both standard streams, so that lines of different threads never mix.
[[nodiscard]] std::mutex& logMutex();

/// Writes `pieces` one after the other, ends the line and flushes. Any thread.
template <class... Pieces>
void logLine(std::ostream& stream, const Pieces&... pieces) {
    const std::lock_guard lock(logMutex());
    stream
        .clear();  // a line that could not be written, to a full disk say, must not silence the rest
    (stream << ... << pieces)
        << std::endl;  // NOLINT(performance-avoid-endl): supervisors read along
}

/// Writes a text that brings its own newline, for the messages whose literals end in one. Any
/// thread.
void logText(std::ostream& stream, const char* text);

/// Reports an operating system error as every line of this service does: its text twice,
/// "TEXT: TEXT". Any thread.
/// \param error the errno value, taken right after the failing call.
void logSystemError(int error);

}  // namespace reticled
