#pragma once

#include <array>
#include <string_view>

namespace reticled::bench {

/// The service's link to the RTOS at its barest: one connection, opened by the first exchange; one
/// send and one recv for each exchange.
class RtosLink {
public:
    RtosLink() = default;
    RtosLink(const RtosLink&) = delete;
    RtosLink& operator=(const RtosLink&) = delete;
    ~RtosLink();

    /// \return the answer, valid until the next exchange.
    /// \throws std::system_error, std::runtime_error when the RTOS has gone.
    std::string_view exchange(std::string_view request);

private:
    static constexpr std::size_t LONGEST_ANSWER_BYTES = 1024;

    int _connection = -1;
    std::array<char, LONGEST_ANSWER_BYTES> _answer{};
};

}  // namespace reticled::bench
