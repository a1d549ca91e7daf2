#pragma once

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "tests/soak/Ledger.h"

/// The sums of one or more rounds: each request in one line of the balance, or among what does not
/// add up.
class Balance {
public:
    /// Adds a round that has come to rest: the service has settled all that it took.
    void add(const Ledger::Contents& round);

    /// Something that is not as it must be, by what the harness saw itself.
    void complain(const std::string& what) { _faults.push_back(what); }

    [[nodiscard]] bool addsUp() const { return _faults.empty(); }

    /// The balance as a table, what does not add up below it.
    void print(std::ostream& out) const;

    /// One line without a newline.
    [[nodiscard]] std::string summary() const;

private:
    void _addRequests(const Ledger::Contents& round);
    void _addUntaken(const Ledger::Contents& round, Ledger::RequestNumber number);
    void _addReplies(const Ledger::Contents& round);
    void _addRepliesOfStaying(Ledger::ConnectionNumber number, const Ledger::Connection& connection,
                              const std::vector<std::size_t>& sent);
    void _addRefusals(const std::string& what, std::size_t count, Ledger::Range expected);

    std::map<std::string, std::size_t> _counts;
    std::vector<std::string> _faults;
};
