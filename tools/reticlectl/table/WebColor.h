#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace reticlectl {

struct WebColor {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
};

/// \param text "#RRGGBB", "#RGB" or one of the sixteen basic colour names of the web, in any case.
/// \return nothing for any other text.
[[nodiscard]] std::optional<WebColor> webColor(std::string_view text);

/// How well one colour is seen on the other, by the light they give, as the web's guidelines for
/// accessibility reckon it: from 1, not at all, to 21, black on white.
[[nodiscard]] double contrast(WebColor left, WebColor right);

}  // namespace reticlectl
