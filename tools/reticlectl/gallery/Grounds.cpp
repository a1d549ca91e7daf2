#include "tools/reticlectl/gallery/Grounds.h"

#include <algorithm>

#include "tools/reticlectl/gallery/GalleryParts.h"
#include "tools/reticlectl/table/WebColor.h"

namespace reticlectl {

const std::vector<Ground>& grounds() {
    static const std::vector<Ground> GROUNDS = {{"auto", "Auto", nullptr},
                                                {"light", "Light", LIGHT_GROUND},
                                                {"dark", "Dark", DARK_GROUND},
                                                {"grey", "Grey", GREY_GROUND}};
    return GROUNDS;
}

std::optional<Ground> groundCloseTo(std::string_view color) {
    constexpr double LEAST_CONTRAST = 2;
    const auto drawn = webColor(color);
    if (!drawn) {
        return std::nullopt;
    }
    const auto isClose = [&drawn](const Ground& ground) {
        return ground.color != nullptr &&
               contrast(*drawn, webColor(ground.color).value()) < LEAST_CONTRAST;
    };
    const auto found = std::find_if(grounds().begin(), grounds().end(), isClose);
    return found != grounds().end() ? std::optional(*found) : std::nullopt;
}

}  // namespace reticlectl
