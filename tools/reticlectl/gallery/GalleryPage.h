#pragma once

#include <string>
#include <vector>

#include "reticle-client/Reticle.h"

namespace reticlectl {

/// What the pictures of a gallery stand on. The reader can change it in the page.
enum class Background { LIGHT, DARK, GREY };

/// A self-contained HTML page with a card for each reticle, in the given order: its picture, or
/// its data as text where it is not SVG, and all that a list tells. It needs no network and no
/// script.
///
/// Nothing in a reticle can do more than show: SVG stands in `img` elements, where it runs no script
/// and loads nothing; all other text is escaped; the page's Content-Security-Policy allows its own
/// style and data: pictures alone.
/// \param device where the reticles come from, any text.
/// \param background the one that shows first.
[[nodiscard]] std::string renderGallery(const std::vector<reticle::Reticle>& reticles,
                                        const std::string& device, Background background);

}  // namespace reticlectl
