#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace reticlectl {

/// `text` as a terminal can show it: whatever could steer the terminal or turn the line around
/// (control characters, changes of the writing direction, bytes that are not UTF-8) stands escaped,
/// as \n, \x1B or \u202E, so that a name from elsewhere does nothing but show.
[[nodiscard]] std::string printable(std::string_view text);

/// A text of several lines in the same way; its newlines and tabs stay.
[[nodiscard]] std::string printableLines(std::string_view text);

/// A JSON text that does nothing but show, either: what could steer is escaped as JSON has it, so
/// that the document reads the same; bytes that are not UTF-8 stand as U+FFFD. Line ends and tabs
/// stay.
[[nodiscard]] std::string printableJson(std::string_view json);

/// `text` in lines of at most `columns` columns, each with its newline, broken at blanks where there
/// are any. \param text printable, UTF-8. \param columns more than 0.
[[nodiscard]] std::string wrapped(std::string_view text, std::size_t columns);

/// How many terminal columns `text` takes: East Asian characters and emoji two, combining ones
/// none. \param text printable, UTF-8.
[[nodiscard]] std::size_t displayWidth(std::string_view text);

/// `text` in at most `columns` columns: where it is longer, its begin and an ellipsis. A combining
/// character stays with the one that it belongs to.
/// \param text printable, UTF-8.
[[nodiscard]] std::string shortened(std::string_view text, std::size_t columns);

/// "1 byte", "2 bytes".
[[nodiscard]] std::string counted(std::size_t count, const std::string& thing);

}  // namespace reticlectl
