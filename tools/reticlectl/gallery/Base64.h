#pragma once

#include <string>
#include <string_view>

namespace reticlectl {

/// `bytes` in the base64 alphabet of RFC 4648, padded, without line breaks.
[[nodiscard]] std::string base64(std::string_view bytes);

}  // namespace reticlectl
