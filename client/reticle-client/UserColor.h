#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace reticle {

/// The colour that a reticle's data shows. The device puts the user's colour into the data and says
/// nothing else of it, so it is taken from there: the value of the first `stroke="..."` attribute
/// that is not "none", else of the first such `fill="..."`. Strokes go first because a reticle is
/// drawn in lines, and a fill may be its background.
///
/// The data is searched as plain text: an attribute in a comment counts, a CSS rule does not.
/// Any thread. Takes time linear in the data's length.
/// \return the value as it stands, of any content and length; nothing when there is none, as in
///         data that is not SVG.
[[nodiscard]] std::optional<std::string> userColor(std::string_view data);

/// Whether data that is to be stored will be shown in the user's colour: whether it holds
/// "user_color", double quotes included, anywhere. Any thread.
[[nodiscard]] bool takesUserColor(std::string_view data);

}  // namespace reticle
