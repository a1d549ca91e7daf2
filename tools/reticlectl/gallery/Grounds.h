#pragma once

#include <array>

namespace reticlectl {

/// What the pictures of a gallery may stand on.
struct Ground {
    /// On the command line and in the style.
    const char* name;
    /// On the page.
    const char* label;
};

/// The first is the default.
constexpr std::array GROUNDS{Ground{"light", "Light"}, Ground{"dark", "Dark"},
                             Ground{"grey", "Photo grey"}};

}  // namespace reticlectl
