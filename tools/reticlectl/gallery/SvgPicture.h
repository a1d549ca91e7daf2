#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace reticlectl {

/// `data` as a text that a browser can draw, when its root is an `svg` element; else nothing.
///
/// A root without a namespace gets SVG's: no device asks for one, but an HTML `img` draws nothing
/// without it. Whether the rest is well-formed is left to the browser.
[[nodiscard]] std::optional<std::string> svgPicture(std::string_view data);

}  // namespace reticlectl
