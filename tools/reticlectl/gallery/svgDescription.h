#pragma once

#include <string>

namespace reticlectl {

/// What a drawing says of itself: the text of its root's first `desc` element, without the space
/// around it. \param svg any text.
/// \return any text, empty where there is none or the drawing is not well-formed.
[[nodiscard]] std::string svgDescription(const std::string& svg);

}  // namespace reticlectl
