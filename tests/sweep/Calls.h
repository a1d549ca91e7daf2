#pragma once

#include <sys/syscall.h>

#include <array>
#include <span>
#include <string_view>

/// System calls that cannot fail for a reason that a daemon meets, or whose failing nobody sees. All
/// others are the sweep's; one that it does not know ends it.
inline constexpr std::array<long, 24> HARMLESS_CALLS{
    SYS_futex,  // its errors say "look again"
    SYS_rt_sigaction,  SYS_rt_sigprocmask,  SYS_rt_sigreturn, SYS_sigaltstack,
    SYS_getpid,        SYS_gettid,          SYS_tgkill,       SYS_exit,
    SYS_exit_group,    SYS_set_robust_list, SYS_rseq,         SYS_restart_syscall,
    SYS_clock_gettime, SYS_clock_nanosleep, SYS_sched_yield,  SYS_wait4,
    SYS_prlimit64,  // reading a limit
    SYS_brk,        // malloc asks mmap instead; its own failing is an allocation that fails
    SYS_getrandom,  // falls back to the address space's own randomness
    SYS_sendmsg,    // the interposer's
    SYS_lseek,         SYS_uname,           SYS_prctl};

/// How a call can fail.
struct FailingCall {
    long number;
    std::string_view name;
    std::span<const int> errors;  ///< those of its manual page that a daemon can meet
    bool canBeShort = false;      ///< the kernel may do less than it is asked for
};

/// Nothing for a call that the sweep does not know.
[[nodiscard]] const FailingCall* findCall(long number);
[[nodiscard]] const FailingCall* findCall(std::string_view name);
