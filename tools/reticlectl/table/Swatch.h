#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace reticlectl {

/// How many columns a swatch takes.
constexpr std::size_t SWATCH_COLUMNS = 2;

/// A patch of the colour between thin grey lines, as 24-bit terminal colour.
/// \param color see webColor(). \return nothing for a text that it does not know.
[[nodiscard]] std::optional<std::string> swatch(std::string_view color);

}  // namespace reticlectl
