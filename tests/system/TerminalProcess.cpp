#include "tests/system/TerminalProcess.h"

#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>

namespace {

constexpr int CANNOT_RUN = 127;

void setEnvironment(const std::map<std::string, std::string>& environment) {
    unsetenv("NO_COLOR");
    unsetenv("COLUMNS");
    setenv("TERM", "xterm-256color", 1);
    for (const auto& [name, value] : environment) {
        setenv(name.c_str(), value.c_str(), 1);
    }
}

}  // namespace

TerminalProcess::TerminalProcess(const std::vector<std::string>& command, Size size,
                                 const std::map<std::string, std::string>& environment)
    : _terminal(_start(command, size, environment, _pid), "forkpty"), _child(_pid) {
    fcntl(_terminal.get(), F_SETFL, O_NONBLOCK);
    fcntl(_terminal.get(), F_SETFD, FD_CLOEXEC);
}

TerminalProcess::~TerminalProcess() {
    // As when a terminal is closed: shells do not listen to SIGTERM.
    if (_child.isAlive()) {
        _child.kill(SIGHUP);
    }
}

const std::string& TerminalProcess::output() {
    constexpr std::size_t CHUNK_BYTES = 65536;
    std::array<char, CHUNK_BYTES> chunk{};
    while (true) {
        const ssize_t count = read(_terminal.get(), chunk.data(), chunk.size());
        if (count <= 0) {
            return _output;
        }
        _output.append(chunk.data(), static_cast<std::size_t>(count));
    }
}

bool TerminalProcess::eventuallyShows(const std::string& text) {
    return eventually([&] { return output().find(text) != std::string::npos; });
}

void TerminalProcess::type(std::string_view keys) const {
    if (write(_terminal.get(), keys.data(), keys.size()) < 0) {
        throw std::system_error(errno, std::generic_category(), "type on a terminal");
    }
}

std::optional<int> TerminalProcess::waitForEnd(std::chrono::milliseconds bound) {
    std::optional<int> status;
    const bool hasEnded = eventually(
        [&] {
            // A program whose terminal is full does not end.
            static_cast<void>(output());
            status = _child.waitForEnd(std::chrono::milliseconds::zero());
            return status.has_value();
        },
        bound);
    static_cast<void>(output());
    return hasEnded ? status : std::nullopt;
}

int TerminalProcess::_start(const std::vector<std::string>& command, Size size,
                            const std::map<std::string, std::string>& environment, pid_t& pid) {
    std::vector<std::string> words = command;
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);

    const winsize window{size.rows, size.columns, 0, 0};
    int terminal = -1;
    pid = forkpty(&terminal, nullptr, nullptr, &window);
    if (pid == 0) {
        setEnvironment(environment);
        execvp(arguments.front(), arguments.data());
        _exit(CANNOT_RUN);
    }
    return terminal;
}
