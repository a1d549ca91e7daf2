#include "tests/system/Process.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace {

constexpr int CANNOT_RUN = 127;

FileDescriptor memoryFile(const std::string& content) {
    FileDescriptor file(memfd_create("captured", MFD_CLOEXEC), "memfd_create");
    if (pwrite(file.get(), content.data(), content.size(), 0) < 0) {
        throw std::system_error(errno, std::generic_category(), "write captured file");
    }
    return file;
}

// Reads by position: the file's own offset belongs to the program that writes it.
std::string contentOf(const FileDescriptor& file) {
    constexpr std::size_t CHUNK_BYTES = 65536;
    std::array<char, CHUNK_BYTES> chunk{};
    std::string content;
    for (;;) {
        const ssize_t count =
            pread(file.get(), chunk.data(), chunk.size(), static_cast<off_t>(content.size()));
        if (count <= 0) {
            return content;
        }
        content.append(chunk.data(), static_cast<std::size_t>(count));
    }
}

}  // namespace

Process::Process(const std::vector<std::string>& command, const std::string& input)
    : _input(memoryFile(input)),
      _output(memoryFile({})),
      _error(memoryFile({})),
      _child(_start(command)) {}

std::string Process::standardOutput() const {
    return contentOf(_output);
}

std::string Process::standardError() const {
    return contentOf(_error);
}

pid_t Process::_start(const std::vector<std::string>& command) const {
    std::vector<std::string> words = command;
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);

    const pid_t pid = fork();
    if (pid < 0) {
        throw std::system_error(errno, std::generic_category(), "fork " + command.front());
    }
    if (pid > 0) {
        return pid;
    }
    dup2(_input.get(), STDIN_FILENO);
    dup2(_output.get(), STDOUT_FILENO);
    dup2(_error.get(), STDERR_FILENO);
    execvp(arguments.front(), arguments.data());
    _exit(CANNOT_RUN);
}
