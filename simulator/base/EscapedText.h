#pragma once

#include <string>
#include <string_view>

namespace sim {

/// Whether a person sees all that is in `text`, and an editor leaves it as it is: UTF-8, and no
/// control characters but tabs and newlines.
[[nodiscard]] bool isPlainText(std::string_view text);

/// `text` in ASCII: `\\` for a backslash, `\r`, and `\xHH` for every other byte that is not a
/// visible character, a blank, a tab or a newline.
[[nodiscard]] std::string escaped(std::string_view text);

/// Takes back what `escaped` did.
/// \throws std::runtime_error that quotes what is no escape.
[[nodiscard]] std::string unescaped(std::string_view text);

}  // namespace sim
