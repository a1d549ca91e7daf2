#include "tools/reticlectl/commands/IndexArgument.h"

#include <algorithm>

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

}  // namespace reticlectl
