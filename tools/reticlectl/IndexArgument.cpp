#include "tools/reticlectl/IndexArgument.h"

#include <algorithm>

namespace reticlectl {

std::string checkIndex(const std::string& text) {
    const bool isNumber = !text.empty() && std::all_of(text.begin(), text.end(), [](char digit) {
        return digit >= '0' && digit <= '9';
    });
    const bool isDecimal = isNumber && (text.size() == 1 || text.front() != '0');
    return isDecimal ? "" : "\"" + text + "\" is no index";
}

}  // namespace reticlectl
