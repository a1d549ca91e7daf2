#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "client/Mistake.h"

namespace reticlectl {

/// What the service makes of a request's body, and what its author may not have meant.
struct RequestCheck {
    enum class Outcome {
        ANSWERED,     ///< there is a reply, be it a refusal by the device
        DROPPED,      ///< no reply; the connection goes on
        ENDS_SERVICE  ///< every client loses its connection
    };

    /// More mistakes than these are not told: a body may hold a million.
    static constexpr std::size_t MISTAKES_LIMIT = 8;

    Outcome outcome = Outcome::ANSWERED;
    /// As the service reads it, of any content and length; empty where there is none.
    std::string action;
    std::vector<reticle::Mistake> mistakes;

    /// Takes memory of up to a hundred times the body's size as long as it runs. Any thread.
    [[nodiscard]] static RequestCheck of(std::string_view body);
};

}  // namespace reticlectl
