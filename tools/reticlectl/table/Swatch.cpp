#include "tools/reticlectl/table/Swatch.h"

#include "tools/reticlectl/table/WebColor.h"

namespace reticlectl {

namespace {

/// Thin lines at both sides, in a grey that shows on any terminal, as on a black one a black patch
/// would not.
constexpr const char* EDGE_COLOR = "38;2;128;128;128";
constexpr const char* EDGES = "▏▕";

}  // namespace

std::optional<std::string> swatch(std::string_view color) {
    const auto patch = webColor(color);
    if (!patch) {
        return std::nullopt;
    }
    return std::string("\x1B[") + EDGE_COLOR + ";48;2;" + std::to_string(patch->red) + ';' +
           std::to_string(patch->green) + ';' + std::to_string(patch->blue) + 'm' + EDGES +
           "\x1B[0m";
}

}  // namespace reticlectl
