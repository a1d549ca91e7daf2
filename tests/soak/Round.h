#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <iosfwd>
#include <list>
#include <random>
#include <shared_mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/soak/Balance.h"
#include "tests/soak/Ledger.h"
#include "tests/soak/LoggedService.h"
#include "tests/soak/OrdinaryClient.h"
#include "tests/support/FlashFiles.h"
#include "tests/system/Simulator.h"

/// One life of the service, with a device of its own: clients play, leave, and all comes to rest.
class Round {
public:
    /// What the device does wrong. A link that is lost stays lost and one that is out of step stays
    /// so, until the service is started anew: they have rounds of their own.
    enum class Kind { LINK_HOLDS, LINK_IS_LOST, LINK_IS_OUT_OF_STEP };

    /// Starts service and device. \throws std::runtime_error when one of them does not start.
    Round(Kind kind, std::mt19937::result_type seed);

    /// Plays for `duration`, waits for rest and enters into `balance` what happened.
    /// \param out gets one line about the resources at rest, before and after
    void play(std::chrono::seconds duration, Balance& balance, std::ostream& out);

private:
    struct Resources {
        std::size_t descriptors = 0;
        std::size_t threads = 0;
        std::size_t residentBytes = 0;
    };

    void _playClients(std::chrono::seconds duration, std::list<OrdinaryClient>& ordinary,
                      Balance& balance);
    [[nodiscard]] std::jthread _start(std::function<void()> play, Balance& balance);
    void _comeToRest(OrdinaryClient& last, std::size_t threads, Balance& balance);
    void _compareResources(const Resources& before, Balance& balance, std::ostream& out);
    [[nodiscard]] Resources _resources() const;

    Kind _kind;
    std::mt19937 _random;
    FlashFiles _flash;
    Ledger _ledger;
    Simulator _device;
    LoggedService _service;
    std::shared_mutex _stall;
    std::mutex _balanceMutex;
    std::atomic<bool> _isStopped = false;
};
