#pragma once

#include <condition_variable>
#include <mutex>

// What clang's thread-safety analysis is told (-Wthread-safety); nothing for other compilers.
// NOLINTBEGIN(cppcoreguidelines-macro-usage): attributes have no other short form
#ifdef __clang__
#define RETICLED_THREAD_SAFETY(attribute) __attribute__((attribute))
#else
#define RETICLED_THREAD_SAFETY(attribute)
#endif
/// A member that is read and written only while `mutex` is held.
#define RETICLED_GUARDED_BY(mutex) RETICLED_THREAD_SAFETY(guarded_by(mutex))
/// A mutex that is taken after `mutex` where both are held.
#define RETICLED_ACQUIRED_AFTER(mutex) RETICLED_THREAD_SAFETY(acquired_after(mutex))
/// A function that takes `mutex` itself: calling it while holding that would block for ever.
#define RETICLED_EXCLUDES(mutex) RETICLED_THREAD_SAFETY(locks_excluded(mutex))
// NOLINTEND(cppcoreguidelines-macro-usage)

namespace reticled {

/// A std::mutex that clang's thread-safety analysis knows: the library's own is not annotated, and
/// the analysis is blind to it.
class RETICLED_THREAD_SAFETY(capability("mutex")) CheckedMutex {
public:
    /// Holds a mutex from construction to destruction, which happen in the same thread.
    class RETICLED_THREAD_SAFETY(scoped_lockable) Lock {
    public:
        /// Blocks while another thread holds `mutex`, which must outlive this object.
        /// \throws std::system_error when the mutex cannot be locked.
        explicit Lock(CheckedMutex& mutex) RETICLED_THREAD_SAFETY(exclusive_lock_function(mutex))
            : _lock(mutex._mutex) {}
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;
        ~Lock() RETICLED_THREAD_SAFETY(unlock_function()) = default;

        /// Gives the mutex up, waits for a notification (or for none, as condition variables do),
        /// and holds the mutex again: callers ask for what they wait for in a loop.
        void wait(std::condition_variable& condition) { condition.wait(_lock); }

    private:
        std::unique_lock<std::mutex> _lock;
    };

private:
    std::mutex _mutex;
};

}  // namespace reticled
