#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace reticle {

/// What both sides send: the bytes 0x00 to 0x1F in ascending order, the body's length in bytes
/// (4 bytes, most significant first), the body.
constexpr std::size_t FRAME_SYNC_BYTES = 32;
constexpr std::size_t FRAME_HEADER_BYTES = 36;

/// What stands in front of a body.
using FrameHeader = std::array<char, FRAME_HEADER_BYTES>;

/// The header of a body of `bodyBytes` bytes, shorter than 4 GiB. Any thread, as all that follow.
[[nodiscard]] FrameHeader frameHeader(std::size_t bodyBytes);

/// Header and body in one text.
[[nodiscard]] std::string encodeFrame(std::string_view body);

/// Whether `bytes` is the begin of a frame, as far as that can be told from its sync bytes.
[[nodiscard]] bool isFrameBegin(std::string_view bytes);

/// The length of the body that a header announces. \param header whole.
[[nodiscard]] std::uint32_t announcedBodyBytes(std::string_view header);

}  // namespace reticle
