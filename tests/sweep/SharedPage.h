#pragma once

#include <sys/types.h>

#include <array>
#include <atomic>

/// Environment variables that tell the interposer which inherited descriptors are its own.
inline constexpr auto PAGE_VARIABLE = "SWEEP_PAGE";
inline constexpr auto CHANNEL_VARIABLE = "SWEEP_CHANNEL";

/// Memory that the swept service (its interposer) and the sweep share. Threads have the numbers of
/// their creation, 0 for main, so that a thread's n-th allocation or call is the same in every run.
struct SharedPage {
    static constexpr int MOST_THREADS = 64;

    /// From the end of the service's loading to the end of the story.
    std::atomic<bool> isCounting;
    std::atomic<int> threads;  ///< created so far, main included
    std::array<std::atomic<pid_t>, MOST_THREADS> threadIds;
    std::array<std::atomic<long>, MOST_THREADS> allocations;  ///< asked for so far, by thread
    std::atomic<pid_t> process;  ///< of all the daemon's processes the one that serves

    // What is to fail: the allocation with this number (from 1) of this thread.
    int failingThread;
    long failingAllocation;
    std::atomic<bool> isMet;  ///< the fault has happened
};
