#include "tests/system/TracingProcess.h"

#include <csignal>
#include <regex>
#include <stdexcept>

#include "tests/support/Patience.h"
#include "tests/support/Ports.h"
#include "tests/system/Programs.h"

namespace {

std::vector<std::string> traceCommand(const std::vector<std::string>& options) {
    std::vector<std::string> command{programs::RETICLECTL, "trace"};
    command.insert(command.end(), options.begin(), options.end());
    return command;
}

}  // namespace

TracingProcess::TracingProcess(const std::vector<std::string>& options)
    : _process(traceCommand(options)) {
    if (!eventually([] { return isListening(PORT); })) {
        throw std::runtime_error("the trace does not listen: " + _process.standardError());
    }
}

std::string TracingProcess::normalised(const std::string& text) {
    std::string result = std::regex_replace(
        text, std::regex("[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}"), "00:00:00.000");
    result = std::regex_replace(result, std::regex("[0-9]{4}-[0-9]{2}-[0-9]{2}T"), "2026-01-01T");
    result =
        std::regex_replace(result, std::regex("127\\.0\\.0\\.1:[3-6][0-9]{4}"), "127.0.0.1:50000");
    result = std::regex_replace(result, std::regex("\"ms\":[0-9.]+"), "\"ms\":0.0");
    return std::regex_replace(result, std::regex("[0-9.]+ ms"), "0.000 ms");
}

bool TracingProcess::eventuallyPrints(const std::string& text) const {
    return eventually([&] { return output().find(text) != std::string::npos; });
}

int TracingProcess::stop() {
    _process.child().kill(SIGINT);
    return _process.waitForEnd().value();
}
