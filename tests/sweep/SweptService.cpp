#include "tests/sweep/SweptService.h"

#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <new>
#include <system_error>

#include "tests/support/Ports.h"
#include "tests/sweep/Programs.h"

namespace {

constexpr int SIGNAL_STATUS_BASE = 128;
/// Main, worker, server, response.
constexpr std::size_t OWN_THREADS = 4;

/// What takes milliseconds takes less than this.
constexpr std::chrono::seconds BUSY_MACHINE{10};

class Variable {
public:
    Variable(const char* name, const std::string& value) : _name(name) {
        setenv(name, value.c_str(), 1);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable() { unsetenv(_name); }

private:
    const char* _name;
};

/// Stays open in a program that is started from here.
FileDescriptor inheritable(const FileDescriptor& descriptor) {
    return {dup(descriptor.get()), "dup"};
}

}  // namespace

OwnedPage::OwnedPage() : _file(memfd_create("page", MFD_CLOEXEC), "memfd_create") {
    if (ftruncate(_file.get(), sizeof(SharedPage)) < 0) {
        throw std::system_error(errno, std::generic_category(), "page");
    }
    void* memory =
        mmap(nullptr, sizeof(SharedPage), PROT_READ | PROT_WRITE, MAP_SHARED, _file.get(), 0);
    if (memory == MAP_FAILED) {
        throw std::system_error(errno, std::generic_category(), "page");
    }
    _page = new (memory) SharedPage{};
}

OwnedPage::~OwnedPage() {
    munmap(_page, sizeof(SharedPage));
}

SweptService::SweptService(const std::string& program, const std::optional<Fault>& fault)
    : _process([&] {
          if (fault && fault->site.call == ALLOCATION) {
              _page.get().failingThread = fault->site.thread;
              _page.get().failingAllocation = fault->site.occurrence;
          }
          return _start(program, _channel);
      }()) {
    const long lastCall = program == DAEMON ? SYS_socket : -1;
    _gate.emplace(std::move(_channel), _page.get(), fault, lastCall);
}

SweptService::~SweptService() {
    kill();
}

void SweptService::kill() {
    if (isAlive()) {
        // None yet: 0 would be our own process group, ctest and whoever has called it.
        if (const pid_t process = _page.get().process; process > 0) {
            ::kill(process, SIGKILL);
        }
        _process.child().kill(SIGKILL);
        static_cast<void>(eventually([this] { return !isAlive(); }));
    }
}

Process SweptService::_start(const std::string& program, FileDescriptor& channel) const {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) < 0) {
        throw std::system_error(errno, std::generic_category(), "socketpair");
    }
    channel = FileDescriptor(ends[0], "channel");
    const FileDescriptor theirs = inheritable(FileDescriptor(ends[1], "channel"));
    const FileDescriptor page(dup(_page.descriptor()), "page");
    const Variable preload("LD_PRELOAD", programs::INTERPOSER);
    const Variable pageNumber(PAGE_VARIABLE, std::to_string(page.get()));
    const Variable channelNumber(CHANNEL_VARIABLE, std::to_string(theirs.get()));
    return Process({programs::BUILD_DIRECTORY + "/" + program});
}

bool SweptService::waitUntilListening() {
    static_cast<void>(
        eventually([this] { return isListening(CLIENT_PORT) || !isAlive(); }, BUSY_MACHINE));
    return isListening(CLIENT_PORT) && isAlive();
}

bool SweptService::isAlive() {
    if (_process.child().isAlive()) {
        return true;
    }
    _status = _isOver ? _status : *_process.waitForEnd();
    _reapOthers();
    return !_isOver;
}

// What the first process forked comes to us when its parent has ended.
void SweptService::_reapOthers() {
    for (;;) {
        int status = 0;
        const pid_t ended = waitpid(-1, &status, WNOHANG);
        if (ended <= 0) {
            _isOver = ended < 0;
            return;
        }
        _status = WIFSIGNALED(status) ? SIGNAL_STATUS_BASE + WTERMSIG(status) : WEXITSTATUS(status);
    }
}

bool SweptService::isAtRest() const {
    return eventually([this] { return info().threadCount() == OWN_THREADS; }, BUSY_MACHINE);
}
