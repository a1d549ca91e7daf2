#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "reticle-client/Reticle.h"

namespace reticlectl {

/// A self-contained HTML page with a card for each reticle, in the given order: its picture, or
/// its data as text where it is not SVG, and all that a list tells. It needs no network and no
/// script.
///
/// Nothing in a reticle can do more than show: SVG stands in `img` elements, where it runs no script
/// and loads nothing; all other text is escaped; the page's Content-Security-Policy allows its own
/// style and data: pictures alone.
/// \param device where the reticles come from, any text.
/// \param ground the name of the one that shows first, see Grounds.h. The reader can change it.
[[nodiscard]] std::string renderGallery(const std::vector<reticle::Reticle>& reticles,
                                        const std::string& device, std::string_view ground);

}  // namespace reticlectl
