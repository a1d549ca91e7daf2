#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/FrameClient.h"
#include "tests/system/ForegroundService.h"
#include "tests/system/Simulator.h"

/// The service between one client and rtos-sim.
class ServiceRun {
public:
    /// \param deviceOptions command line of rtos-sim
    explicit ServiceRun(const std::vector<std::string>& deviceOptions);

    /// Sends `text` as a frame and waits for what becomes of it.
    /// \return the reply; none where the service gives up the request without one
    /// \throws std::runtime_error when neither comes, or the service ends
    [[nodiscard]] std::optional<std::string> exchange(const std::string& text);

    /// As `exchange`, one text after the other.
    [[nodiscard]] std::vector<std::optional<std::string>> exchangeAll(
        const std::vector<std::string>& texts);

    /// Ends the device. \return whether it was content with what it got, and the client got no
    /// more than its replies; if not, why.
    [[nodiscard]] testing::AssertionResult finish();

    /// What the service has logged, both streams in one.
    [[nodiscard]] std::string log() const { return _service.progress(); }

private:
    Simulator _device;
    ForegroundService _service;
    std::optional<FrameClient> _client;
    std::size_t _sent = 0;
    std::size_t _replies = 0;
};
