#pragma once

#include <atomic>
#include <random>
#include <shared_mutex>
#include <string>

#include "tests/soak/Conversation.h"
#include "tests/soak/Ledger.h"

/// A client that does not behave: each visit is another one, chosen at random. One thread.
class Visitor {
public:
    /// \param stall held by a visitor that stops reading; others then ask for nothing, or more
    ///        replies would wait than the service keeps. Shared by all visitors of a round.
    /// \param mayStall false with a device that cannot be trusted to remove what a stall needs
    Visitor(Ledger& ledger, std::shared_mutex& stall, std::mt19937::result_type seed, bool mayStall)
        : _ledger(ledger), _stall(stall), _random(seed), _mayStall(mayStall) {}

    /// Visits until `isStopped`.
    void play(const std::atomic<bool>& isStopped);

private:
    using Visit = void (Visitor::*)();

    // Without a request:
    void _leave();
    void _sayNothing();
    void _sendHalfAHeader();
    void _sendHalfABody();
    void _sendGarbage();
    void _announceTooMuch();
    void _sendLargeGarbage();
    void _resetWithinABody();
    // With requests:
    void _askAndReset();
    void _askAndClose();
    void _askAndHalfClose();
    void _askWrongly();
    void _askAtLength();
    void _askTooOften();
    void _stopReading();

    void _visitWithoutRequest(const std::string& bytes, Ledger::Range headers,
                              Ledger::Range bodies);
    void _removeGiant(Conversation& conversation);
    [[nodiscard]] std::size_t _pick(std::size_t least, std::size_t most);

    Ledger& _ledger;
    std::shared_mutex& _stall;
    std::mt19937 _random;
    bool _mayStall;
};
