#pragma once

#include <cstddef>
#include <string>

#include "reticle-client/Reticle.h"

namespace reticle {

/// The service takes no request whose JSON text has this many bytes or more.
constexpr std::size_t REQUEST_LIMIT_BYTES = 4194304;

/// The JSON texts of the requests: the documented keys and nothing else. Any thread.
///
/// Each \throws InvalidRequest when data is empty, InvalidText when a name or data is not UTF-8 or
/// holds a NUL byte, RequestTooLarge when the text would reach REQUEST_LIMIT_BYTES.
[[nodiscard]] std::string listRequest();
[[nodiscard]] std::string activateRequest(int index);
[[nodiscard]] std::string addRequest(const NewReticle& reticle);
/// \throws InvalidRequest also for a negative index: the service would add a reticle instead.
[[nodiscard]] std::string updateRequest(int index, const NewReticle& reticle);
[[nodiscard]] std::string removeRequest(int index);

}  // namespace reticle
