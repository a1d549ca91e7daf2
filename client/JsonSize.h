#pragma once

#include <cstddef>
#include <string_view>

namespace reticle {

/// How many values a JSON text holds at most, told without parsing it: a short text may hold so many
/// that, parsed, they take a hundred times its memory. Comments are read over, as the parser does.
/// Any thread. Takes time linear in the text's length.
/// \param text JSON; of any other text the result means nothing.
[[nodiscard]] std::size_t countJsonValues(std::string_view text);

}  // namespace reticle
