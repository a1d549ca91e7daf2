#include "tests/sweep/Calls.h"

#include <algorithm>
#include <cerrno>

namespace {

constexpr std::array SOCKET_ERRORS{EACCES, EAFNOSUPPORT, EMFILE, ENFILE, ENOBUFS, ENOMEM};
constexpr std::array SETSOCKOPT_ERRORS{ENOPROTOOPT, ENOMEM};
constexpr std::array BIND_ERRORS{EACCES, EADDRINUSE, EADDRNOTAVAIL};
constexpr std::array LISTEN_ERRORS{EADDRINUSE};
constexpr std::array ACCEPT_ERRORS{ECONNABORTED, EINTR,  EMFILE,       ENFILE,     ENOBUFS,
                                   ENOMEM,       EPERM,  EPROTO,       ENETDOWN,   ENOPROTOOPT,
                                   EHOSTDOWN,    ENONET, EHOSTUNREACH, EOPNOTSUPP, ENETUNREACH};
constexpr std::array CONNECT_ERRORS{EACCES,       EPERM, EADDRNOTAVAIL, EAGAIN,
                                    ECONNREFUSED, EINTR, ENETUNREACH,   ETIMEDOUT};
constexpr std::array RECEIVE_ERRORS{EAGAIN, ECONNRESET, EINTR, ENOMEM, ETIMEDOUT, EHOSTUNREACH};
constexpr std::array SEND_ERRORS{EAGAIN, ECONNRESET, EINTR,     ENOBUFS,
                                 ENOMEM, EPIPE,      ETIMEDOUT, EHOSTUNREACH};
constexpr std::array OPEN_ERRORS{EACCES, EDQUOT, EINTR,  EIO,   EISDIR,  ELOOP, EMFILE, ENFILE,
                                 ENOENT, ENOMEM, ENOSPC, ENXIO, ENOTDIR, EPERM, EROFS};
constexpr std::array STAT_ERRORS{EIO, ENOMEM, EOVERFLOW};
constexpr std::array READ_ERRORS{EINTR, EIO, EISDIR, ENOMEM};
constexpr std::array WRITE_ERRORS{EAGAIN, EDQUOT, EFBIG, EINTR, EIO, ENOSPC, EPERM, EPIPE};
constexpr std::array CLOSE_ERRORS{EINTR, EIO, ENOSPC, EDQUOT};
constexpr std::array CLOSE_RANGE_ERRORS{EMFILE, ENOMEM, ENOSYS, EPERM};
constexpr std::array DUPLICATE_ERRORS{EBUSY, EINTR, EMFILE};
constexpr std::array FCNTL_ERRORS{EACCES};
constexpr std::array POLL_ERRORS{EINTR, ENOMEM};
constexpr std::array IOCTL_ERRORS{EINVAL};
constexpr std::array SHUTDOWN_ERRORS{ENOTCONN};
constexpr std::array REMOVE_ERRORS{EACCES, EBUSY, EIO, EISDIR, ENOENT, ENOMEM, EPERM, EROFS};
constexpr std::array SETSID_ERRORS{EPERM};
constexpr std::array CLONE_ERRORS{EAGAIN, ENOMEM, EPERM};
constexpr std::array MEMORY_ERRORS{ENOMEM};
constexpr std::array MMAP_ERRORS{EAGAIN, ENOMEM};

constexpr std::array CALLS{
    FailingCall{SYS_socket, "socket", SOCKET_ERRORS},
    FailingCall{SYS_setsockopt, "setsockopt", SETSOCKOPT_ERRORS},
    FailingCall{SYS_bind, "bind", BIND_ERRORS},
    FailingCall{SYS_listen, "listen", LISTEN_ERRORS},
    FailingCall{SYS_accept, "accept", ACCEPT_ERRORS},
    FailingCall{SYS_accept4, "accept4", ACCEPT_ERRORS},
    FailingCall{SYS_connect, "connect", CONNECT_ERRORS},
    FailingCall{SYS_recvfrom, "recvfrom", RECEIVE_ERRORS, true},
    FailingCall{SYS_sendto, "sendto", SEND_ERRORS, true},
    FailingCall{SYS_openat, "openat", OPEN_ERRORS},
    FailingCall{SYS_newfstatat, "newfstatat", STAT_ERRORS},
    FailingCall{SYS_read, "read", READ_ERRORS, true},
    FailingCall{SYS_write, "write", WRITE_ERRORS, true},
    FailingCall{SYS_writev, "writev", WRITE_ERRORS, true},
    FailingCall{SYS_close, "close", CLOSE_ERRORS},
    FailingCall{SYS_close_range, "close_range", CLOSE_RANGE_ERRORS},
    FailingCall{SYS_dup, "dup", DUPLICATE_ERRORS},
    FailingCall{SYS_dup2, "dup2", DUPLICATE_ERRORS},
    FailingCall{SYS_dup3, "dup3", DUPLICATE_ERRORS},
    FailingCall{SYS_fcntl, "fcntl", FCNTL_ERRORS},
    FailingCall{SYS_poll, "poll", POLL_ERRORS},
    FailingCall{SYS_ioctl, "ioctl", IOCTL_ERRORS},
    FailingCall{SYS_shutdown, "shutdown", SHUTDOWN_ERRORS},
    FailingCall{SYS_unlink, "unlink", REMOVE_ERRORS},
    FailingCall{SYS_rmdir, "rmdir", REMOVE_ERRORS},
    FailingCall{SYS_setsid, "setsid", SETSID_ERRORS},
    FailingCall{SYS_clone, "clone", CLONE_ERRORS},
    FailingCall{SYS_clone3, "clone3", CLONE_ERRORS},
    FailingCall{SYS_mmap, "mmap", MMAP_ERRORS},
    FailingCall{SYS_munmap, "munmap", MEMORY_ERRORS},
    FailingCall{SYS_mprotect, "mprotect", MEMORY_ERRORS},
    FailingCall{SYS_madvise, "madvise", MEMORY_ERRORS},
};

template <class Holds>
const FailingCall* find(Holds holds) {
    const auto* found = std::find_if(CALLS.begin(), CALLS.end(), holds);
    return found == CALLS.end() ? nullptr : found;
}

}  // namespace

const FailingCall* findCall(long number) {
    return find([=](const FailingCall& call) { return call.number == number; });
}

const FailingCall* findCall(std::string_view name) {
    return find([=](const FailingCall& call) { return call.name == name; });
}
