#include "tests/system/ForegroundService.h"

#include <functional>
#include <stdexcept>

#include "tests/support/Patience.h"
#include "tests/support/Ports.h"
#include "tests/support/Text.h"

namespace {

testing::AssertionResult waitForText(const std::string& text, std::size_t times,
                                     const std::function<std::string()>& log) {
    if (eventually([&] { return countOf(text, log()) >= times; })) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "not " << times << " times: " << text << "\nin the log:\n"
                                       << log();
}

}  // namespace

void ForegroundService::waitUntilListening() {
    if (!eventually([this] { return isListening(CLIENT_PORT) || !isAlive(); }) || !isAlive()) {
        throw std::runtime_error("the service does not listen: " + errors());
    }
}

testing::AssertionResult ForegroundService::hasProgress(const std::string& text,
                                                        std::size_t times) const {
    return waitForText(text, times, [this] { return progress(); });
}

testing::AssertionResult ForegroundService::hasError(const std::string& text,
                                                     std::size_t times) const {
    return waitForText(text, times, [this] { return errors(); });
}
