#include "tools/reticlectl/commands/PingStatistics.h"

#include <json/json.h>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>

#include "tools/reticlectl/outcome/JsonLine.h"

namespace reticlectl {

namespace {

constexpr double LOSS_OF_ALL = 100;  // percent

}  // namespace

std::string millisecondsText(Milliseconds time) {
    constexpr int DECIMALS = 3;
    std::ostringstream text;
    text << std::fixed << std::setprecision(DECIMALS) << time.count();
    return text.str();
}

std::size_t PingStatistics::received() const {
    return static_cast<std::size_t>(
        std::count_if(_roundTrips.begin(), _roundTrips.end(),
                      [](const auto& roundTrip) { return roundTrip.has_value(); }));
}

std::string PingStatistics::text(const std::string& peer, Milliseconds elapsed) const {
    std::ostringstream text;
    text << "--- " << peer << " ping statistics ---\n"
         << transmitted() << " requests transmitted, " << received() << " received, "
         << std::floor(_lossPercent()) << "% loss, time " << static_cast<long long>(elapsed.count())
         << "ms\n";
    if (const auto summary = _summary()) {
        text << "rtt min/avg/max/mdev = " << millisecondsText(summary->minimum) << '/'
             << millisecondsText(summary->average) << '/' << millisecondsText(summary->maximum)
             << '/' << millisecondsText(summary->deviation) << " ms\n";
    }
    return text.str();
}

std::string PingStatistics::json(const std::string& peer, Milliseconds elapsed) const {
    Json::Value document;
    document["peer"] = peer;
    document["transmitted"] = static_cast<Json::UInt64>(transmitted());
    document["received"] = static_cast<Json::UInt64>(received());
    document["lossPercent"] = _lossPercent();
    document["elapsedMs"] = elapsed.count();
    if (const auto summary = _summary()) {
        document["minMs"] = summary->minimum.count();
        document["avgMs"] = summary->average.count();
        document["maxMs"] = summary->maximum.count();
        document["mdevMs"] = summary->deviation.count();
    }
    Json::Value& roundTrips = document["roundTripsMs"] = Json::Value(Json::arrayValue);
    for (const auto& roundTrip : _roundTrips) {
        roundTrips.append(roundTrip ? Json::Value(roundTrip->count()) : Json::Value());
    }
    return toJsonLine(document);
}

double PingStatistics::_lossPercent() const {
    if (_roundTrips.empty()) {
        return 0;
    }
    return LOSS_OF_ALL * static_cast<double>(transmitted() - received()) /
           static_cast<double>(transmitted());
}

std::optional<PingStatistics::Summary> PingStatistics::_summary() const {
    double sum = 0;
    double sumOfSquares = 0;
    auto minimum = Milliseconds::max();
    auto maximum = Milliseconds::zero();
    for (const auto& roundTrip : _roundTrips) {
        if (roundTrip) {
            sum += roundTrip->count();
            sumOfSquares += roundTrip->count() * roundTrip->count();
            minimum = std::min(minimum, *roundTrip);
            maximum = std::max(maximum, *roundTrip);
        }
    }
    if (received() == 0) {
        return std::nullopt;
    }
    const double average = sum / static_cast<double>(received());
    // Rounding may make the difference negative where all are the same.
    const double variance =
        std::max(0.0, sumOfSquares / static_cast<double>(received()) - average * average);
    return Summary{minimum, Milliseconds(average), maximum, Milliseconds(std::sqrt(variance))};
}

}  // namespace reticlectl
