#include "tests/soak/LoggedService.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "tests/support/Patience.h"
#include "tests/support/Ports.h"
#include "tests/system/Programs.h"

LoggedService::Pipe::Pipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) < 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    reading = FileDescriptor(ends[0], "pipe");
    writing = FileDescriptor(ends[1], "pipe");
}

LoggedService::LoggedService(Ledger& ledger)
    : _log(std::move(_pipe.reading), ledger), _process(_start(_pipe)) {
    if (!eventually([this] { return isListening(CLIENT_PORT) || !isAlive(); }) || !isAlive()) {
        throw std::runtime_error("the service does not listen");
    }
}

pid_t LoggedService::_start(Pipe& pipe) {
    const FileDescriptor log = std::move(pipe.writing);
    const pid_t pid = fork();
    if (pid < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (pid == 0) {
        constexpr int CANNOT_RUN = 127;
        dup2(log.get(), STDOUT_FILENO);
        dup2(log.get(), STDERR_FILENO);
        execl(programs::RETICLED_FOREGROUND.c_str(), "reticled-foreground", nullptr);
        _exit(CANNOT_RUN);
    }
    return pid;
}
