#pragma once

#include <string>
#include <string_view>

namespace reticlectl {

/// `text` as it may stand in HTML or XML, between tags and in quoted attributes: it can neither
/// begin a tag nor end an attribute. Control characters stay, see DisplayText.h.
[[nodiscard]] std::string htmlText(std::string_view text);

/// `bytes` as a URL that holds them. \param mediaType such as "image/svg+xml", needs no escaping.
[[nodiscard]] std::string dataUrl(std::string_view mediaType, std::string_view bytes);

}  // namespace reticlectl
