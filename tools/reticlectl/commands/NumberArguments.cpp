#include "tools/reticlectl/commands/NumberArguments.h"

#include <charconv>
#include <cstdint>
#include <limits>
#include <sstream>
#include <system_error>

namespace reticlectl {

std::string checkNumber(const std::string& text, int smallest, int largest) {
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    const bool isNumber = error == std::errc() && stop == end && std::to_string(number) == text;
    return isNumber && number >= smallest && number <= largest
               ? ""
               : "\"" + text + "\" is not a number from " + std::to_string(smallest) + " to " +
                     std::to_string(largest);
}

std::string checkIndex(const std::string& text) {
    return checkNumber(text, 0, std::numeric_limits<int>::max());
}

std::string checkPort(const std::string& text) {
    return checkNumber(text, 1, std::numeric_limits<std::uint16_t>::max());
}

std::string checkSeconds(const std::string& text) {
    constexpr double SHORTEST_S = 0.001;
    constexpr double LONGEST_S = 86400;
    double seconds = 0;
    const char* end = std::from_chars(text.data(), text.data() + text.size(), seconds).ptr;
    // Written so that "nan" is refused, too.
    const bool isLength =
        end == text.data() + text.size() && seconds >= SHORTEST_S && seconds <= LONGEST_S;
    return isLength ? "" : "\"" + text + "\" is not a number of seconds from 0.001 to 86400";
}

std::string secondsText(double seconds) {
    std::ostringstream text;
    text << seconds;
    return text.str();
}

}  // namespace reticlectl
