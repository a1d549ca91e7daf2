#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace reticlectl {

/// `text` as a terminal can show it: whatever could steer the terminal or turn the line around
/// (control characters, changes of the writing direction, bytes that are not UTF-8) stands escaped,
/// as \n, \x1B or \u202E, so that a name from elsewhere does nothing but show.
[[nodiscard]] std::string printable(std::string_view text);

/// How many terminal columns `text` takes: East Asian characters and emoji two, combining ones
/// none. \param text printable, UTF-8.
[[nodiscard]] std::size_t displayWidth(std::string_view text);

}  // namespace reticlectl
