#pragma once

#include <functional>
#include <memory>
#include <string>

namespace reticled::bench {

/// Makes the reply to one request. Shared ownership, so that a reply which is always the same is
/// not copied for each request. Called by one thread at a time.
using Work = std::function<std::shared_ptr<const std::string>(const std::string& request)>;

}  // namespace reticled::bench
