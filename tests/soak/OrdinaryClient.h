#pragma once

#include <atomic>
#include <random>
#include <string>

#include "tests/soak/Conversation.h"

/// A client as it should be: stays connected, waits for each reply, uses all commands. It owns one
/// of the device's reticles, whose name carries the number of its last update, so that its replies
/// can be told from all others'. One thread at a time.
class OrdinaryClient {
public:
    /// \param index of its reticle, which nobody else updates
    /// \param isStrict whether replies must fit their requests: not so with a device that is out of
    ///        step with the service
    OrdinaryClient(Ledger& ledger, int index, std::mt19937::result_type seed, bool isStrict)
        : _conversation(ledger), _index(index), _random(seed), _isStrict(isStrict) {}

    /// Uses commands at random until `isStopped`.
    void play(const std::atomic<bool>& isStopped);

    [[nodiscard]] Conversation& conversation() { return _conversation; }

private:
    void _list();
    void _activate();
    void _update();
    void _add();
    void _delete(int index);
    void _deleteUnknown();
    void _ask(const std::string& members, const Ledger::Expectation& expectation);
    [[nodiscard]] std::string _ownName(int round) const;
    [[nodiscard]] std::string _extraName() const;

    Conversation _conversation;
    int _index;
    std::mt19937 _random;
    bool _isStrict;
    int _lastRound = 0;       ///< of the last update that was sent
    int _confirmedRound = 0;  ///< of the last update that was seen done
};
