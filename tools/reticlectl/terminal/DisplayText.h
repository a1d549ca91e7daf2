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

/// `text` in at most `columns` columns: where it is longer, its begin and an ellipsis. A combining
/// character stays with the one that it belongs to.
/// \param text printable, UTF-8.
[[nodiscard]] std::string shortened(std::string_view text, std::size_t columns);

}  // namespace reticlectl
