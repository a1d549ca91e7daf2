#include "tests/sweep/CallGate.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <vector>

namespace {

using Arguments = std::span<const __u64>;

std::string processPath(const seccomp_notif& asked, const std::string& name) {
    return "/proc/" + std::to_string(asked.pid) + "/" + name;
}

iovec memory(const void* start, std::size_t size) {
    return {const_cast<void*>(start), size};
}

iovec memoryOf(__u64 start, std::size_t size) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): an address in the service
    return {reinterpret_cast<void*>(start), size};
}

std::string textAt(const seccomp_notif& asked, __u64 start) {
    std::array<char, PATH_MAX> text{};
    const iovec here = memory(text.data(), text.size() - 1);
    const iovec there = memoryOf(start, text.size() - 1);
    process_vm_readv(static_cast<pid_t>(asked.pid), &here, 1, &there, 1, 0);
    return text.data();
}

/// What the call is about.
std::string targetOf(const seccomp_notif& asked) {
    const Arguments arguments(asked.data.args);
    switch (asked.data.nr) {
        case SYS_openat:
            return textAt(asked, arguments[1]);
        case SYS_unlink:
        case SYS_rmdir:
            return textAt(asked, arguments[0]);
        case SYS_mmap:
        case SYS_munmap:
        case SYS_mprotect:
        case SYS_madvise:
        case SYS_clone:
        case SYS_clone3:
        case SYS_setsid:
        case SYS_socket:
            return {};
        default:
            break;
    }
    std::error_code none;
    const std::string path = std::filesystem::read_symlink(
        processPath(asked, "fd/" + std::to_string(arguments[0])), none);
    return path.starts_with("socket:") ? "socket" : path.starts_with("/memfd:") ? "log" : path;
}

/// Our own descriptor of the file that the call is about.
FileDescriptor fileOf(const seccomp_notif& asked) {
    std::ifstream status(processPath(asked, "status"));
    std::string word;
    while (status >> word && word != "Tgid:") {
    }
    pid_t process = 0;
    status >> process;
    const FileDescriptor owner(static_cast<int>(syscall(SYS_pidfd_open, process, 0)), "pidfd_open");
    return {static_cast<int>(
                syscall(SYS_pidfd_getfd, owner.get(), static_cast<int>(asked.data.args[0]), 0)),
            "pidfd_getfd"};
}

/// What the call writes from or reads to; of several pieces the first that holds something.
iovec bufferOf(const seccomp_notif& asked) {
    const Arguments arguments(asked.data.args);
    if (asked.data.nr != SYS_writev) {
        return memoryOf(arguments[1], arguments[2]);
    }
    std::vector<iovec> pieces(arguments[2]);
    const std::size_t size = pieces.size() * sizeof(iovec);
    const iovec here = memory(pieces.data(), size);
    const iovec there = memoryOf(arguments[1], size);
    process_vm_readv(static_cast<pid_t>(asked.pid), &here, 1, &there, 1, 0);
    return *std::find_if(pieces.begin(), pieces.end(),
                         [](const iovec& piece) { return piece.iov_len > 0; });
}

/// Does half of what the call asks for, rounded up. \return its result, a negative errno value for an
/// error.
long doHalf(const seccomp_notif& asked) {
    const Arguments arguments(asked.data.args);
    iovec there = bufferOf(asked);
    there.iov_len = (there.iov_len + 1) / 2;
    std::vector<char> bytes(there.iov_len);
    const FileDescriptor file = fileOf(asked);
    const auto process = static_cast<pid_t>(asked.pid);
    const iovec here = memory(bytes.data(), bytes.size());
    const int flags = static_cast<int>(arguments[3]);
    ssize_t result = 0;
    switch (asked.data.nr) {
        case SYS_write:
        case SYS_writev:
            process_vm_readv(process, &here, 1, &there, 1, 0);
            result = write(file.get(), bytes.data(), bytes.size());
            break;
        case SYS_sendto:
            process_vm_readv(process, &here, 1, &there, 1, 0);
            result = send(file.get(), bytes.data(), bytes.size(), flags);
            break;
        case SYS_read:
            result = read(file.get(), bytes.data(), bytes.size());
            break;
        default:
            result = recv(file.get(), bytes.data(), bytes.size(), flags);
            break;
    }
    const int error = errno;
    if (asked.data.nr == SYS_read || asked.data.nr == SYS_recvfrom) {
        process_vm_writev(process, &here, 1, &there, 1, 0);
    }
    return result < 0 ? -error : result;
}

}  // namespace

CallGate::CallGate(FileDescriptor channel, SharedPage& page, std::optional<Fault> fault,
                   long lastCall)
    : _channel(std::move(channel)),
      _page(page),
      _fault(std::move(fault)),
      _lastCall(lastCall),
      _stop(eventfd(0, EFD_CLOEXEC), "eventfd"),
      _thread([this] { _serve(); }) {}

CallGate::~CallGate() {
    eventfd_write(_stop.get(), 1);
    _thread.join();
    if (_shortCall.joinable()) {
        _shortCall.join();
    }
}

void CallGate::_serve() {
    if (_waitFor(_channel)) {
        _takeListener();
    }
    while (_listener.isOpen() && _waitFor(_listener)) {
        _handleNext();
    }
    _listener.close();
}

bool CallGate::_waitFor(const FileDescriptor& source) const {
    std::array<pollfd, 2> waited{pollfd{source.get(), POLLIN, 0}, pollfd{_stop.get(), POLLIN, 0}};
    poll(waited.data(), waited.size(), -1);
    return (waited[0].revents & POLLIN) != 0 && waited[1].revents == 0;
}

void CallGate::_takeListener() {
    char nothing = 0;
    iovec data = memory(&nothing, 1);
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
    msghdr message{};
    message.msg_iov = &data;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    if (recvmsg(_channel.get(), &message, MSG_CMSG_CLOEXEC) > 0) {
        int listener = -1;
        std::memcpy(&listener, CMSG_DATA(CMSG_FIRSTHDR(&message)), sizeof listener);
        _listener = FileDescriptor(listener, "the service's calls");
    }
}

void CallGate::_handleNext() {
    seccomp_notif asked{};
    ++_received;
    // Whoever asked may have ended.
    if (ioctl(_listener.get(), SECCOMP_IOCTL_NOTIF_RECV, &asked) == 0) {
        if (_isToFail(asked)) {
            _fail(asked);
        } else {
            _letThrough(asked);
        }
    }
    ++_settled;
}

long CallGate::settledCalls() const {
    pollfd asked{_listener.get(), POLLIN, 0};
    const bool isWaitedFor = poll(&asked, 1, 0) > 0 && (asked.revents & POLLIN) != 0;
    const long settled = _settled;
    return isWaitedFor || settled != _received ? -1 : settled;
}

bool CallGate::_isToFail(const seccomp_notif& asked) {
    if (asked.data.nr == _lastCall) {
        _page.isCounting = false;
    }
    if (!_page.isCounting) {
        return false;
    }
    const FailingCall* call = findCall(asked.data.nr);
    if (call == nullptr) {
        _unknownCalls.insert(asked.data.nr);
        return false;
    }
    const int thread = _threadOf(asked);
    const long occurrence = ++_counts[{thread, call}];
    return _fault && _fault->site.call == call->name && _fault->site.thread == thread &&
           _fault->site.occurrence == occurrence;
}

void CallGate::_fail(const seccomp_notif& asked) {
    _target = targetOf(asked);
    _page.isMet = true;
    if (_fault->error == 0) {
        _cutShort(asked);
        return;
    }
    if (asked.data.nr == SYS_close) {
        _giveBack(asked);
    }
    _answer(asked, -_fault->error);
}

void CallGate::_cutShort(const seccomp_notif& asked) {
    _shortCall = std::thread([this, asked] { _answer(asked, doHalf(asked)); });
}

// Linux has closed the descriptor whatever close says. The number cannot be freed from outside, but
// what it stands for can be exchanged.
void CallGate::_giveBack(const seccomp_notif& asked) const {
    const FileDescriptor null(open("/dev/null", O_RDWR | O_CLOEXEC), "/dev/null");
    seccomp_notif_addfd exchanged{};
    exchanged.id = asked.id;
    exchanged.flags = SECCOMP_ADDFD_FLAG_SETFD;
    exchanged.srcfd = static_cast<__u32>(null.get());
    exchanged.newfd = static_cast<__u32>(asked.data.args[0]);
    ioctl(_listener.get(), SECCOMP_IOCTL_NOTIF_ADDFD, &exchanged);
}

void CallGate::_answer(const seccomp_notif& asked, long result) const {
    seccomp_notif_resp answer{};
    answer.id = asked.id;
    if (result < 0) {
        answer.error = static_cast<__s32>(result);
    } else {
        answer.val = result;
    }
    ioctl(_listener.get(), SECCOMP_IOCTL_NOTIF_SEND, &answer);
}

void CallGate::_letThrough(const seccomp_notif& asked) const {
    seccomp_notif_resp answer{};
    answer.id = asked.id;
    answer.flags = SECCOMP_USER_NOTIF_FLAG_CONTINUE;
    ioctl(_listener.get(), SECCOMP_IOCTL_NOTIF_SEND, &answer);
}

// What a daemon forks goes on as its main thread, under another number.
int CallGate::_threadOf(const seccomp_notif& asked) const {
    const auto& ids = _page.threadIds;
    const auto* found = std::find(ids.begin(), ids.end(), static_cast<pid_t>(asked.pid));
    return found == ids.end() ? 0 : static_cast<int>(found - ids.begin());
}
