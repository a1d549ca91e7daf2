#pragma once

#include <string>
#include <string_view>

namespace sim {

/// `text` as an event shows it: as it is, or escaped (see EscapedText.h) where it is no UTF-8 or
/// holds control characters. Of a long one the beginning, with "... (N bytes)" behind it.
[[nodiscard]] std::string shownText(std::string_view text);

/// The same on one line, for people: JSON without its blanks, other texts with `\n` and `\t` for
/// newlines and tabs.
[[nodiscard]] std::string shownOnOneLine(std::string_view text);

/// What the service asks with `request`, by name; null where it is no message that devices know.
[[nodiscard]] const char* messageOf(std::string_view request);

}  // namespace sim
