#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace reticlectl {

/// What the pictures of a gallery may stand on.
struct Ground {
    /// On the command line and in the style.
    const char* name;
    /// On the page.
    const char* label;
    /// "#RRGGBB"; null where the reader's system chooses between light and dark.
    const char* color;
};

/// The first is the default.
[[nodiscard]] const std::vector<Ground>& grounds();

/// The ground on which a drawing in `color` would hardly be seen: their contrast() is below 2. One at
/// most is so close to a colour. Nothing for a colour that webColor() does not know.
[[nodiscard]] std::optional<Ground> groundCloseTo(std::string_view color);

}  // namespace reticlectl
