#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace sim {

/// How one answer goes onto the wire.
struct Delivery {
    /// What becomes of the connection after the answer.
    enum class End { KEEP_OPEN, CLOSE, RESET };

    std::string bytes;  ///< nothing is sent when empty
    std::chrono::milliseconds delay{0};
    std::optional<std::chrono::milliseconds> gap;  ///< between the two halves; none: in one send
    End end = End::KEEP_OPEN;
};

/// The device's side of one exchange: a request text in, the answer's way out. Never throws.
using ExchangeFunction = std::function<Delivery(const std::string& request)>;

}  // namespace sim
