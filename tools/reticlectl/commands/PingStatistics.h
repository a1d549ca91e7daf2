#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace reticlectl {

/// A round trip or a stretch of time in milliseconds.
using Milliseconds = std::chrono::duration<double, std::milli>;

/// "0.453": milliseconds as ping lines show them.
[[nodiscard]] std::string millisecondsText(Milliseconds time);

/// What a series of requests has shown.
class PingStatistics {
public:
    void addAnswer(Milliseconds roundTrip) { _roundTrips.emplace_back(roundTrip); }
    void addLoss() { _roundTrips.emplace_back(); }

    /// How many requests there were, answered or not.
    [[nodiscard]] std::size_t transmitted() const { return _roundTrips.size(); }
    [[nodiscard]] std::size_t received() const;

    /// The lines that end a ping: counts, and minimum, average, maximum and standard deviation of
    /// the round trips where there is one.
    /// \param elapsed the time that the whole series took.
    [[nodiscard]] std::string text(const std::string& peer, Milliseconds elapsed) const;

    /// The same as a JSON document in one line, and each round trip, null for a loss.
    [[nodiscard]] std::string json(const std::string& peer, Milliseconds elapsed) const;

private:
    struct Summary {
        Milliseconds minimum;
        Milliseconds average;
        Milliseconds maximum;
        Milliseconds deviation;
    };

    [[nodiscard]] double _lossPercent() const;
    [[nodiscard]] std::optional<Summary> _summary() const;

    // Empty for a request that was not answered.
    std::vector<std::optional<Milliseconds>> _roundTrips;
};

}  // namespace reticlectl
