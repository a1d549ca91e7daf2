#include "tools/reticlectl/table/WebColor.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>

namespace reticlectl {

namespace {

constexpr unsigned BITS_PER_CHANNEL = 8;
constexpr unsigned CHANNEL_MASK = 0xFF;

struct NamedColor {
    std::string_view name;
    std::string_view hex;
};

constexpr auto NAMED_COLORS = std::to_array<NamedColor>({{"aqua", "00ffff"},
                                                         {"black", "000000"},
                                                         {"blue", "0000ff"},
                                                         {"fuchsia", "ff00ff"},
                                                         {"gray", "808080"},
                                                         {"green", "008000"},
                                                         {"lime", "00ff00"},
                                                         {"maroon", "800000"},
                                                         {"navy", "000080"},
                                                         {"olive", "808000"},
                                                         {"purple", "800080"},
                                                         {"red", "ff0000"},
                                                         {"silver", "c0c0c0"},
                                                         {"teal", "008080"},
                                                         {"white", "ffffff"},
                                                         {"yellow", "ffff00"}});

char lowered(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool isSame(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return lowered(a) == lowered(b); });
}

/// The six hexadecimal digits of a colour, empty for a text that is none.
std::string hexDigits(std::string_view color) {
    constexpr std::size_t SHORT_DIGITS = 3;
    if (!color.starts_with('#')) {
        const auto* const found =
            std::find_if(NAMED_COLORS.begin(), NAMED_COLORS.end(),
                         [color](const NamedColor& named) { return isSame(named.name, color); });
        return std::string(found != NAMED_COLORS.end() ? found->hex : "");
    }
    color.remove_prefix(1);
    if (color.size() != SHORT_DIGITS) {
        return std::string(color);
    }
    std::string digits;
    for (const char digit : color) {
        digits.append(2, digit);
    }
    return digits;
}

std::optional<std::uint32_t> parseHex(std::string_view digits) {
    constexpr std::size_t DIGITS = 6;
    constexpr int BASE = 16;
    std::uint32_t value = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), value, BASE);
    const bool isWhole = error == std::errc() && end == digits.data() + digits.size();
    return digits.size() == DIGITS && isWhole ? std::optional(value) : std::nullopt;
}

/// The light of one channel, 0 to 1: the inverse of the curve by which sRGB encodes it.
double light(std::uint8_t channel) {
    constexpr double LINEAR_UP_TO = 0.04045;
    const double value = channel / 255.0;
    return value <= LINEAR_UP_TO ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double luminance(WebColor color) {
    return 0.2126 * light(color.red) + 0.7152 * light(color.green) + 0.0722 * light(color.blue);
}

}  // namespace

std::optional<WebColor> webColor(std::string_view text) {
    const auto value = parseHex(hexDigits(text));
    if (!value) {
        return std::nullopt;
    }
    const auto channel = [&value](unsigned position) {
        return static_cast<std::uint8_t>((*value >> (position * BITS_PER_CHANNEL)) & CHANNEL_MASK);
    };
    return WebColor{channel(2), channel(1), channel(0)};
}

double contrast(WebColor left, WebColor right) {
    constexpr double STRAY_LIGHT = 0.05;
    const auto [darker, lighter] = std::minmax({luminance(left), luminance(right)});
    return (lighter + STRAY_LIGHT) / (darker + STRAY_LIGHT);
}

}  // namespace reticlectl
