#include "tests/unit/simulator/ChildProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

namespace sim::test {

namespace {

constexpr int READ_END = 0;
constexpr int WRITE_END = 1;

std::array<int, 2> makePipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    return ends;
}

void readRest(int pipe, std::string& text) {
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = read(pipe, buffer.data(), buffer.size())) > 0;) {
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments) {
    const std::array<int, 2> out = makePipe();
    const std::array<int, 2> err = makePipe();
    std::string program = RTOS_SIM;
    std::vector<std::string> texts = arguments;
    std::vector<char*> argv{program.data()};
    for (std::string& text : texts) {
        argv.push_back(text.data());
    }
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[WRITE_END], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err[WRITE_END], STDERR_FILENO);
    const int error = posix_spawn(&_pid, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(out[WRITE_END]);
    close(err[WRITE_END]);
    _outPipe = out[READ_END];
    _errPipe = err[READ_END];
    if (error != 0) {
        throw std::runtime_error("cannot start " + program);
    }
}

ChildProcess::~ChildProcess() {
    if (_pid > 0) {
        kill(_pid, SIGKILL);
        waitpid(_pid, nullptr, 0);
    }
    close(_outPipe);
    close(_errPipe);
}

std::string ChildProcess::readLine() {
    std::string line;
    for (char character = 0; read(_outPipe, &character, 1) == 1 && character != '\n';) {
        line += character;
    }
    _out += line + '\n';
    return line;
}

std::uint16_t ChildProcess::readPort() {
    const std::string line = readLine();
    const std::string head = "rtos-sim: listening on 127.0.0.1:";
    if (!line.starts_with(head)) {
        throw std::runtime_error("it does not listen: " + line);
    }
    return static_cast<std::uint16_t>(std::stoul(line.substr(head.size())));
}

void ChildProcess::signal(int number) const {
    kill(_pid, number);
}

int ChildProcess::wait() {
    readRest(_outPipe, _out);
    readRest(_errPipe, _err);
    int status = 0;
    waitpid(_pid, &status, 0);
    _pid = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace sim::test
