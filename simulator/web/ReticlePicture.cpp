#include "simulator/web/ReticlePicture.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "simulator/base/Files.h"
#include "simulator/base/NamedFiles.h"

namespace sim {

namespace {

/// With its quotes, as the service looks for it.
constexpr std::string_view PLACEHOLDER = "\"user_color\"";
constexpr std::size_t MAX_PICTURE_BYTES = 16'000'000;

std::string inColour(std::string_view data, const std::string& colour) {
    std::string picture;
    for (std::size_t at = 0; at != std::string_view::npos;) {
        const std::size_t place = data.find(PLACEHOLDER, at);
        picture += data.substr(at, place - at);
        at = place;
        if (place != std::string_view::npos) {
            picture += '"' + colour + '"';
            at += PLACEHOLDER.size();
        }
        if (picture.size() > MAX_PICTURE_BYTES) {
            throw std::runtime_error("The picture is too large.");
        }
    }
    return picture;
}

}  // namespace

std::string reticlePicture(const ReticleList& list, const std::filesystem::path& root, int index) {
    const auto reticle = std::find_if(list.begin(), list.end(), [index](const Reticle& candidate) {
        return candidate.index == index;
    });
    if (reticle == list.end()) {
        throw std::runtime_error("No reticle has that index.");
    }
    const std::optional<std::string> data = readFile(root / RETICLES_DIRECTORY / reticle->fileName);
    if (!data) {
        throw std::runtime_error("Its file cannot be read.");
    }
    return inColour(*data, reticle->userColor);
}

}  // namespace sim
