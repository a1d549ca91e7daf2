#include "tests/system/Simulator.h"

#include <csignal>
#include <stdexcept>

#include "tests/support/Patience.h"
#include "tests/system/Programs.h"

namespace {

std::vector<std::string> commandWith(const std::vector<std::string>& options) {
    std::vector<std::string> command{programs::RTOS_SIM};
    command.insert(command.end(), options.begin(), options.end());
    return command;
}

}  // namespace

Simulator::Simulator(const std::vector<std::string>& options) : _process(commandWith(options)) {
    if (!eventually([this] { return output().ends_with('\n') || !isAlive(); }) || !isAlive()) {
        throw std::runtime_error("the simulator does not listen: " + _process.standardError());
    }
}

int Simulator::stop() {
    _process.child().kill(SIGINT);
    return _process.waitForEnd().value();
}

void Simulator::kill() {
    _process.child().kill(SIGKILL);
    static_cast<void>(_process.waitForEnd());
}
