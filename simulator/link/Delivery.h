#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace sim {

/// How one answer goes onto the wire.
struct Delivery {
    /// What becomes of the connection after the answer.
    enum class End { KEEP_OPEN, CLOSE, RESET };

    std::string bytes;  ///< nothing is sent when empty
    std::chrono::milliseconds delay{0};
    std::optional<std::chrono::milliseconds> gap;  ///< between the two halves; none: in one send
    End end = End::KEEP_OPEN;

    // What onlookers learn; it does not travel.
    std::optional<int>
        retVal{};          ///< the device's, or the code of a refusal by fault; none when replayed
    std::string reason{};  ///< of a refusal
    std::vector<std::string> faults{};  ///< that spoiled the answer, as --fault takes them
};

/// The device's side of one exchange: a request text in, the answer's way out. Never throws.
using ExchangeFunction = std::function<Delivery(const std::string& request)>;

}  // namespace sim
