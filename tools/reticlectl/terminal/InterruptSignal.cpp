#include "tools/reticlectl/terminal/InterruptSignal.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include "tools/reticlectl/outcome/Failure.h"

namespace reticlectl {

namespace {

sigset_t interruptOnly() {
    sigset_t signals;
    ::sigemptyset(&signals);
    ::sigaddset(&signals, SIGINT);
    return signals;
}

}  // namespace

InterruptSignal::InterruptSignal() {
    const sigset_t signals = interruptOnly();
    _descriptor = ::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    if (_descriptor < 0) {
        throw Failure(ExitStatus::USAGE, std::string("cannot watch for Ctrl-C: ") +
                                             std::strerror(errno) + ": close other programs");
    }
    ::pthread_sigmask(SIG_BLOCK, &signals, &_previousMask);
}

InterruptSignal::~InterruptSignal() {
    // Taken, so that it does not end the process as soon as it may.
    signalfd_siginfo taken{};
    [[maybe_unused]] const ssize_t size = ::read(_descriptor, &taken, sizeof taken);
    ::close(_descriptor);
    ::pthread_sigmask(SIG_SETMASK, &_previousMask, nullptr);
}

bool InterruptSignal::waitFor(std::chrono::nanoseconds time) const {
    using std::chrono::nanoseconds;
    using std::chrono::seconds;
    const nanoseconds left = std::max(time, nanoseconds::zero());
    const auto wholeSeconds = std::chrono::floor<seconds>(left);
    // On 32-bit systems both members are narrower than what durations count.
    const timespec bound{static_cast<decltype(timespec::tv_sec)>(wholeSeconds.count()),
                         static_cast<decltype(timespec::tv_nsec)>((left - wholeSeconds).count())};
    pollfd entry{_descriptor, POLLIN, 0};
    return ::ppoll(&entry, 1, &bound, nullptr) > 0;
}

}  // namespace reticlectl
