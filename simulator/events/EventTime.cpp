#include "simulator/events/EventTime.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace sim {

std::string eventTime(std::chrono::system_clock::time_point time) {
    using std::chrono::milliseconds;
    const auto since = std::chrono::floor<milliseconds>(time.time_since_epoch());
    const std::time_t seconds =
        std::chrono::system_clock::to_time_t(std::chrono::floor<std::chrono::seconds>(time));
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    constexpr std::size_t SIZE = sizeof("2026-11-22T00:10:00");
    std::array<char, SIZE> text{};
    (void)std::strftime(text.data(), text.size(), "%FT%T", &parts);
    const std::string fraction = std::to_string((since % std::chrono::seconds(1)).count());
    return std::string(text.data()) + '.' + std::string(3 - fraction.size(), '0') + fraction + 'Z';
}

}  // namespace sim
