#include "tools/reticlectl/commands/NumberArguments.h"

#include <algorithm>
#include <charconv>
#include <sstream>

namespace reticlectl {

bool isDecimalNumber(const std::string& text) {
    const bool isNumber = !text.empty() && std::all_of(text.begin(), text.end(), [](char digit) {
        return digit >= '0' && digit <= '9';
    });
    return isNumber && (text.size() == 1 || text.front() != '0');
}

std::string checkIndex(const std::string& text) {
    return isDecimalNumber(text) ? "" : "\"" + text + "\" is no index";
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
