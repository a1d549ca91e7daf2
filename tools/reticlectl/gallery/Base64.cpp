#include "tools/reticlectl/gallery/Base64.h"

#include <cstddef>
#include <cstdint>

namespace reticlectl {

namespace {

constexpr std::string_view ALPHABET =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t GROUP_BYTES = 3;
constexpr std::size_t GROUP_DIGITS = 4;
constexpr unsigned BITS_OF_BYTE = 8;
constexpr unsigned BITS_OF_DIGIT = 6;

/// \param group 1 to 3 bytes.
void appendGroup(std::string& text, std::string_view group) {
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < GROUP_BYTES; ++i) {
        const auto byte = i < group.size() ? static_cast<unsigned char>(group[i]) : 0U;
        bits = (bits << BITS_OF_BYTE) | byte;
    }
    for (std::size_t i = 0; i < GROUP_DIGITS; ++i) {
        const auto shift = BITS_OF_DIGIT * static_cast<unsigned>(GROUP_DIGITS - 1 - i);
        text += i <= group.size() ? ALPHABET[(bits >> shift) % ALPHABET.size()] : '=';
    }
}

}  // namespace

std::string base64(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + GROUP_BYTES - 1) / GROUP_BYTES * GROUP_DIGITS);
    for (std::size_t at = 0; at < bytes.size(); at += GROUP_BYTES) {
        appendGroup(text, bytes.substr(at, GROUP_BYTES));
    }
    return text;
}

std::string dataUrl(std::string_view mediaType, std::string_view bytes) {
    return "data:" + std::string(mediaType) + ";base64," + base64(bytes);
}

}  // namespace reticlectl
