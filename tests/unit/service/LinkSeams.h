#pragma once

#include <chrono>
#include <cstddef>
#include <functional>

/// Places where the linker puts a function of ours in front of one of the library's (see
/// CMakeLists.txt), so that a test can bring about what is rare: nothing else is changed.
namespace seams {

/// How long this thread dawdles before it waits on a condition variable, and before it allocates:
/// both widen moments in which another thread may come in between.
extern thread_local std::chrono::nanoseconds dawdleBeforeWait;
extern thread_local std::chrono::nanoseconds dawdleBeforeAllocation;

/// Gives the processor to others for `duration`.
void dawdle(std::chrono::nanoseconds duration);

/// Requests for this much memory and more fail with std::bad_alloc while the object lives.
class MemoryShortage {
public:
    explicit MemoryShortage(std::size_t fromBytes);
    MemoryShortage(const MemoryShortage&) = delete;
    MemoryShortage& operator=(const MemoryShortage&) = delete;
    ~MemoryShortage();
};

/// While it lives, each `read` of this thread is preceded by what the test says.
class BeforeRead {
public:
    explicit BeforeRead(std::function<void()> action);
    BeforeRead(const BeforeRead&) = delete;
    BeforeRead& operator=(const BeforeRead&) = delete;
    ~BeforeRead();
};

}  // namespace seams
