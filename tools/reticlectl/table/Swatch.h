#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace reticlectl {

/// How many columns a swatch takes.
constexpr std::size_t SWATCH_COLUMNS = 2;

/// A patch of the colour, as 24-bit terminal colour.
/// \param color "#RRGGBB", "#RGB" or one of the sixteen basic colour names of the web, in any case.
/// \return nothing for any other text.
[[nodiscard]] std::optional<std::string> swatch(std::string_view color);

}  // namespace reticlectl
