#pragma once

#include <string>
#include <string_view>

namespace reticlectl {

/// `bytes` in the base64 alphabet of RFC 4648, padded, without line breaks.
[[nodiscard]] std::string base64(std::string_view bytes);

/// `bytes` as a URL that holds them. \param mediaType such as "image/svg+xml", needs no escaping.
[[nodiscard]] std::string dataUrl(std::string_view mediaType, std::string_view bytes);

}  // namespace reticlectl
