#include "tests/unit/service/OwnProcess.h"

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <system_error>
#include <vector>

// NOLINTNEXTLINE(bugprone-reserved-identifier): the compiler's own name; null unless it counts coverage
extern "C" [[gnu::weak]] void __gcov_dump();

namespace {

void require(long result, const char* purpose) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), purpose);
    }
}

// What is buffered would otherwise be written by both processes.
void flushStandardStreams() {
    std::cout.flush();
    static_cast<void>(std::fflush(nullptr));
}

}  // namespace

OwnProcess::OwnProcess(const std::function<int()>& body) : _child(_start(body)) {}

pid_t OwnProcess::_start(const std::function<int()>& body) const {
    flushStandardStreams();
    const pid_t pid = fork();
    require(pid, "fork");
    if (pid == 0) {
        dup2(_out.descriptor(), STDOUT_FILENO);
        dup2(_err.descriptor(), STDERR_FILENO);
        if (__gcov_dump != nullptr) {
            std::at_quick_exit(__gcov_dump);
        }
        std::exit(body());
    }
    return pid;
}

void endAtOnce(int status) {
    if (__gcov_dump != nullptr) {
        __gcov_dump();
    }
    _exit(status);
}

void refuseSystemCall(unsigned number, int error, std::optional<unsigned> onlyThirdArgument) {
    constexpr std::size_t THIRD = 2;
    const auto load = [](std::size_t offset) {
        return sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<unsigned>(offset));
    };
    const auto skipUnless = [](unsigned value, std::uint8_t instructions) {
        return sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, value, 0, instructions);
    };
    const auto end = [](unsigned verdict) {
        return sock_filter BPF_STMT(BPF_RET | BPF_K, verdict);
    };
    std::vector<sock_filter> program{load(offsetof(seccomp_data, nr))};
    if (onlyThirdArgument) {
        program.push_back(skipUnless(number, 3));
        program.push_back(load(offsetof(seccomp_data, args) + THIRD * sizeof(std::uint64_t)));
        program.push_back(skipUnless(*onlyThirdArgument, 1));
    } else {
        program.push_back(skipUnless(number, 1));
    }
    program.push_back(end(SECCOMP_RET_ERRNO | static_cast<unsigned>(error)));
    program.push_back(end(SECCOMP_RET_ALLOW));
    const sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
    require(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), "forego privileges");
    require(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter), "filter system calls");
}
