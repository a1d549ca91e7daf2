#include "tools/reticlectl/doctor/runProgram.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <thread>

namespace reticlectl {

namespace {

using Clock = std::chrono::steady_clock;

/// What the program writes until it has closed its end, or the deadline is over.
void readAll(int descriptor, Clock::time_point deadline, std::string& output) {
    constexpr std::size_t PIECE_BYTES = 4096;
    std::array<char, PIECE_BYTES> piece{};
    while (true) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd readable{.fd = descriptor, .events = POLLIN, .revents = 0};
        const int ready = left > 0 ? ::poll(&readable, 1, static_cast<int>(left)) : 0;
        if (ready < 0 && errno == EINTR) {
            continue;
        }
        const ssize_t bytes = ready > 0 ? ::read(descriptor, piece.data(), piece.size()) : 0;
        if (bytes <= 0) {
            return;
        }
        output.append(piece.data(), static_cast<std::size_t>(bytes));
    }
}

/// Waits for the end; kills where that does not come before the deadline. \return the status; -1 where it is unknown.
int statusOf(pid_t pid, Clock::time_point deadline) {
    // A program may run on after it has closed its output, so that nothing tells its end.
    constexpr std::chrono::milliseconds GLANCE{1};
    int status = -1;
    while (::waitpid(pid, &status, WNOHANG) == 0) {
        if (Clock::now() >= deadline) {
            ::kill(pid, SIGKILL);
            ::waitpid(pid, &status, 0);
            break;
        }
        std::this_thread::sleep_for(GLANCE);
    }
    return status;
}

/// Starts the program with both output streams leading to `output`. \return its number, or -1.
pid_t start(const std::vector<std::string>& command, int output) {
    std::vector<std::string> words = command;
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t streams;
    if (::posix_spawn_file_actions_init(&streams) != 0) {
        return -1;
    }
    pid_t pid = -1;
    const bool isReady =
        ::posix_spawn_file_actions_addopen(&streams, STDIN_FILENO, "/dev/null", O_RDONLY, 0) == 0 &&
        ::posix_spawn_file_actions_adddup2(&streams, output, STDOUT_FILENO) == 0 &&
        ::posix_spawn_file_actions_adddup2(&streams, output, STDERR_FILENO) == 0;
    if (!isReady || ::posix_spawnp(&pid, arguments.front(), &streams, nullptr, arguments.data(),
                                   environ) != 0) {
        pid = -1;
    }
    ::posix_spawn_file_actions_destroy(&streams);
    return pid;
}

}  // namespace

std::optional<ProgramRun> runProgram(const std::vector<std::string>& command,
                                     std::chrono::milliseconds longest) {
    const auto deadline = Clock::now() + longest;
    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0) {
        return std::nullopt;
    }
    const auto [readEnd, writeEnd] = pipe;
    const pid_t pid = start(command, writeEnd);
    ::close(writeEnd);
    std::optional<ProgramRun> run;
    if (pid > 0) {
        run.emplace();
        readAll(readEnd, deadline, run->output);
        const int status = statusOf(pid, deadline);
        run->hasSucceeded = status == 0;
        // As shells tell it; an emulator cannot tell it sooner.
        constexpr int NO_PROGRAM = 127;
        if (WIFEXITED(status) && WEXITSTATUS(status) == NO_PROGRAM) {
            run.reset();
        }
    }
    ::close(readEnd);
    return run;
}

}  // namespace reticlectl
