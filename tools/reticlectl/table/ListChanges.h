#pragma once

#include <string>
#include <vector>

#include "reticle-client/Reticle.h"

namespace reticlectl {

/// What has changed from one list of reticles to the next.
struct ListChanges {
    /// Of each reticle of the later list: '+' new, '~' changed, ' ' as it was. One without an index
    /// cannot be told from others, and is never marked.
    std::vector<char> marks;
    /// "+ new, ~ changed, gone: 3, 5", as far as there is such a thing; empty when nothing changed.
    std::string summary;

    [[nodiscard]] static ListChanges between(const std::vector<reticle::Reticle>& before,
                                             const std::vector<reticle::Reticle>& after);
};

}  // namespace reticlectl
