#include "tests/replay/ServiceRun.h"

#include <stdexcept>

#include "tests/support/Patience.h"
#include "tests/support/Text.h"
#include "tests/system/Programs.h"

namespace {

/// Keeps both streams in one log, as operators do.
std::vector<std::string> serviceCommand() {
    return {"/bin/sh", "-c", "exec \"$0\" 2>&1", programs::RETICLED_FOREGROUND};
}

std::size_t countReplies(const std::string& log) {
    return countOf("handleJsReq, response: ", log);
}

/// Requests that were given up without a reply, whatever for: each has a line of its own.
std::size_t countFailures(const std::string& log) {
    return countOf("_handlerRoutine, exception: ", log) +
           countOf("Error: received packet isn't json\n", log);
}

}  // namespace

ServiceRun::ServiceRun(const std::vector<std::string>& deviceOptions)
    : _device(deviceOptions), _service(serviceCommand()) {
    _service.waitUntilListening();
    _client.emplace();
}

std::optional<std::string> ServiceRun::exchange(const std::string& text) {
    _client->sendFrame(text);
    ++_sent;
    const bool isOver = eventually([this] {
        return countReplies(log()) + countFailures(log()) >= _sent || !_service.isAlive();
    });
    if (!isOver || !_service.isAlive()) {
        throw std::runtime_error("the service does not finish the request " + text +
                                 "\nIts log: " + log());
    }
    if (countReplies(log()) == _replies) {
        return std::nullopt;
    }
    ++_replies;
    return _client->readReply();
}

std::vector<std::optional<std::string>> ServiceRun::exchangeAll(
    const std::vector<std::string>& texts) {
    std::vector<std::optional<std::string>> replies;
    for (const std::string& text : texts) {
        replies.push_back(exchange(text));
    }
    return replies;
}

testing::AssertionResult ServiceRun::finish() {
    if (!_client->connection().isQuiet()) {
        return testing::AssertionFailure() << "the client got more than its replies";
    }
    if (_device.stop() != 0) {
        return testing::AssertionFailure() << _device.errors();
    }
    return testing::AssertionSuccess();
}
