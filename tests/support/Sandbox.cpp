#include "tests/support/Sandbox.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <system_error>
#include <utility>

#include "tests/support/FileDescriptor.h"

namespace {

constexpr int SIGNAL_STATUS_BASE = 128;

void require(int result, const char* purpose) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), purpose);
    }
}

// The kernel takes each of these files in one write.
void writeProcFile(const char* path, const std::string& text) {
    const FileDescriptor file(open(path, O_WRONLY | O_CLOEXEC), path);
    require(static_cast<int>(write(file.get(), text.data(), text.size())), path);
}

void becomeRootOfUserNamespace(uid_t user, gid_t group) {
    writeProcFile("/proc/self/setgroups", "deny");
    writeProcFile("/proc/self/uid_map", "0 " + std::to_string(user) + " 1");
    writeProcFile("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
}

void unshareNamespaces() {
    constexpr int NAMESPACES = CLONE_NEWNET | CLONE_NEWNS | CLONE_NEWPID;
    const uid_t user = geteuid();
    const gid_t group = getegid();
    if (user == 0) {
        require(unshare(NAMESPACES), "unshare (network, mount, pid namespaces)");
        return;
    }
    require(unshare(NAMESPACES | CLONE_NEWUSER), "unshare (user, network, mount, pid namespaces)");
    becomeRootOfUserNamespace(user, group);
}

void bringLoopbackUp() {
    const FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0),
                                "socket for loopback");
    ifreq request{};
    std::strncpy(request.ifr_name, "lo", sizeof request.ifr_name - 1);
    require(ioctl(socket.get(), SIOCGIFFLAGS, &request), "read flags of loopback");
    request.ifr_flags = static_cast<short>(request.ifr_flags | IFF_UP);
    require(ioctl(socket.get(), SIOCSIFFLAGS, &request), "bring loopback up");
}

bool isBelowTmp(const std::filesystem::path& path) {
    return path.native().starts_with("/tmp/");
}

// Programs under test get what a test gives them, not what the caller of the tests left open.
void makeInheritedDescriptorsPrivate() {
    constexpr unsigned FIRST = STDERR_FILENO + 1;
    require(close_range(FIRST, ~0U, CLOSE_RANGE_CLOEXEC), "keep descriptors to ourselves");
}

// A service that dies on purpose must not leave a core file in the build directory.
void forbidCoreFiles() {
    const rlimit none{0, 0};
    require(setrlimit(RLIMIT_CORE, &none), "forbid core files");
}

int statusOf(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "wait for the sandbox");
        }
    }
    if (WIFSIGNALED(status)) {
        std::cerr << "The sandbox was ended by signal " << WTERMSIG(status) << std::endl;
        return SIGNAL_STATUS_BASE + WTERMSIG(status);
    }
    return WEXITSTATUS(status);
}

/// Goes on in a child; this process waits for it and ends with its status.
void continueInChild() {
    const pid_t child = fork();
    require(child, "fork into the sandbox");
    if (child > 0) {
        // Without exit handlers: a process whose sandbox is gone can fork no more, as the leak check
        // at the end of a sanitized program would do.
        std::_Exit(statusOf(child));
    }
}

}  // namespace

Sandbox::Sandbox(std::vector<std::string> keptDirectories)
    : _keptDirectories(std::move(keptDirectories)) {}

void Sandbox::run(const std::function<int()>& body) const {
    unshareNamespaces();
    // What is buffered now would otherwise be written by both processes.
    std::cout.flush();
    static_cast<void>(std::fflush(nullptr));
    continueInChild();
    try {
        _prepare();
        // The kernel spares process 1 signals that would end any other, SIGPIPE among them. Under an
        // emulator, where no other process can become the parent of daemons, the tests stay process 1.
        if (prctl(PR_SET_CHILD_SUBREAPER, 1) == 0) {
            continueInChild();
            require(prctl(PR_SET_CHILD_SUBREAPER, 1), "become the parent of daemons");
        }
        // A signal to a process group, and the kernel's hang-up of one with a stopped process, stay inside.
        require(setsid(), "leave the caller's process group");
    } catch (const std::exception& failure) {
        std::cerr << "FAILED: no private namespaces for the tests: " << failure.what() << std::endl;
        std::exit(EXIT_FAILURE);
    }
    // Whatever the caller of the tests ignores.
    std::signal(SIGPIPE, SIG_DFL);
    std::exit(body());
}

void Sandbox::renewNetwork() {
    require(unshare(CLONE_NEWNET), "unshare (network namespace)");
    bringLoopbackUp();
}

void Sandbox::_prepare() const {
    require(prctl(PR_SET_PDEATHSIG, SIGKILL), "end with the parent");
    require(mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr), "make mounts private");
    require(mount("proc", "/proc", "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC, nullptr),
            "mount a private /proc");
    makeInheritedDescriptorsPrivate();
    bringLoopbackUp();
    _hideTmp();
    forbidCoreFiles();
}

void Sandbox::_hideTmp() const {
    std::map<std::filesystem::path, FileDescriptor> kept;
    for (const std::string& directory : _keptDirectories) {
        const std::filesystem::path path = std::filesystem::canonical(directory);
        if (isBelowTmp(path)) {
            kept.emplace(path, FileDescriptor(open(path.c_str(), O_PATH | O_CLOEXEC), path));
        }
    }
    require(mount("tmpfs", "/tmp", "tmpfs", MS_NOSUID | MS_NODEV, "mode=1777"),
            "mount a private /tmp");
    for (const auto& [path, directory] : kept) {
        std::filesystem::create_directories(path);
        const std::string source = "/proc/self/fd/" + std::to_string(directory.get());
        require(mount(source.c_str(), path.c_str(), nullptr, MS_BIND | MS_REC, nullptr),
                "keep the project visible below /tmp");
    }
    // The old working directory may lie in the hidden /tmp.
    std::filesystem::current_path("/");
}
